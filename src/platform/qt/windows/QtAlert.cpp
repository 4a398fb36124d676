#include "platform/qt/windows/QtAlert.h"

#include "platform/qt/windows/ManagerMessage.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

namespace glintar::platform {

QtAlert::QtAlert(const AlertText& text, std::function<void(std::size_t)> onAnswer) {
    box_.setIcon(QMessageBox::Warning);
    box_.setWindowTitle(QString::fromStdString(text.title));
    box_.setText(QString::fromStdString(text.title));
    box_.setInformativeText(QString::fromStdString(text.text));
    for (QLabel* const label : box_.findChildren<QLabel*>()) {
        label->setTextFormat(Qt::PlainText);
    }
    box_.setWindowModality(Qt::ApplicationModal);
    box_.setWindowFlag(Qt::WindowStaysOnTopHint);
    std::vector<QPushButton*> buttons;
    for (const auto& button : text.buttons) {
        // The roles' own order would differ from desktop to desktop.
        const QString title = QString::fromStdString(button).replace('&', "&&");
        buttons.push_back(box_.addButton(title, QMessageBox::ActionRole));
    }
    // The box made the text after the row of buttons, and would be read out in that order.
    box_.findChild<QDialogButtonBox*>()->raise();
    box_.setDefaultButton(buttons.front());
    box_.setEscapeButton(buttons.back());
    // Later, since the box is not done with its own end.
    QObject::connect(
        &box_, &QDialog::finished, &box_,
        [this, buttons, answer = std::move(onAnswer)] {
            const auto chosen = std::ranges::find(buttons, box_.clickedButton());
            const auto kept = answer;  // it may destroy us
            kept(static_cast<std::size_t>(std::min(chosen, buttons.end() - 1) - buttons.begin()));
        },
        Qt::QueuedConnection);
    bringToFront(box_);
}

void QtClipboard::setText(std::string text) {
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

}  // namespace glintar::platform
