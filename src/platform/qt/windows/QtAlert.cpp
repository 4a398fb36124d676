#include "platform/qt/windows/QtAlert.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPushButton>

#include <vector>

namespace glintar::platform {

QtAlert::QtAlert(const AlertText& text, std::function<void(std::size_t)> onAnswer) {
    box_.setIcon(QMessageBox::Warning);
    box_.setWindowTitle(QString::fromStdString(text.title));
    box_.setTextFormat(Qt::PlainText);
    box_.setText(QString::fromStdString(text.title));
    box_.setInformativeText(QString::fromStdString(text.text));
    box_.setWindowModality(Qt::ApplicationModal);
    box_.setWindowFlag(Qt::WindowStaysOnTopHint);
    std::vector<QAbstractButton*> buttons;
    for (const auto& button : text.buttons) {
        // The roles' own order would differ from desktop to desktop.
        buttons.push_back(box_.addButton(QString::fromStdString(button), QMessageBox::ActionRole));
    }
    if (!buttons.empty()) {
        box_.setDefaultButton(static_cast<QPushButton*>(buttons.front()));
        box_.setEscapeButton(buttons.back());
    }
    QObject::connect(&box_, &QDialog::finished, &box_,
                     [this, buttons = std::move(buttons), answer = std::move(onAnswer)] {
                         const auto chosen = std::ranges::find(buttons, box_.clickedButton());
                         const auto index = chosen == buttons.end() ? buttons.size() - 1 : chosen - buttons.begin();
                         const auto kept = answer;  // it may destroy us
                         kept(static_cast<std::size_t>(index));
                     });
    box_.show();
    box_.raise();
    box_.activateWindow();
}

void QtClipboard::setText(std::string text) {
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

}  // namespace glintar::platform
