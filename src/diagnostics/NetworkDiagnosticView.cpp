#include "diagnostics/NetworkDiagnosticView.h"

#include "diagnostics/DiagnosticRowView.h"
#include "diagnostics/SpinnerView.h"
#include "platform/Desktop.h"
#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/qt/views/ViewParts.h"
#include "platform/qt/windows/QtView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <vector>

namespace glintar::diagnostics {

namespace {

using platform::viewColor;
using platform::viewFont;
using presenter::SystemColor;

constexpr int kWidth = 420;
constexpr int kList = 250;
constexpr int kInset = 12;
constexpr int kFooter = 40;
constexpr int kButton = 80;
constexpr int kSymbol = 32;
constexpr int kSymbolSide = 38;
constexpr int kSpinner = 13;

class DiagnosticsWidget final : public QWidget {
public:
    DiagnosticsWidget(platform::Platform& platform, platform::Desktop& desktop, NetworkDiagnosticManager& manager)
        : desktop_(desktop), manager_(manager) {
        setFixedWidth(kWidth);
        auto* const all = new QVBoxLayout(this);
        all->setContentsMargins(0, 0, 0, 0);
        all->setSpacing(0);
        addHeader(*all);
        all->addWidget(upperLine_ = platform::divider(this, Qt::Horizontal));
        all->addWidget(makeList());
        all->addWidget(lowerLine_ = platform::divider(this, Qt::Horizontal));
        all->addWidget(makeFooter());
        appearanceChanges_ =
            platform.notifications.observe(platform::kAppearanceChanged, [this] { appearanceChanged(); });
        platform::onScaleChange(*this, [this] { appearanceChanged(); });
        manager_.onChange = [this] { showStates(); };
        appearanceChanged();
    }

    DiagnosticsWidget(const DiagnosticsWidget&) = delete;
    DiagnosticsWidget& operator=(const DiagnosticsWidget&) = delete;
    ~DiagnosticsWidget() override { manager_.onChange = nullptr; }

protected:
    void showEvent(QShowEvent* event) override {
        run_->setFocus();
        QWidget::showEvent(event);
    }

private:
    void addHeader(QVBoxLayout& all) {
        symbol_ = platform::plainLabel(this, font());
        title_ = platform::plainLabel(this, viewFont(15, QFont::Bold));
        title_->setText(QStringLiteral("Network Diagnostics"));
        subtitle_ = platform::plainLabel(this, viewFont(12));
        subtitle_->setText(QStringLiteral("Check your connection to core services."));
        all.addSpacing(16);
        for (QLabel* const label : {symbol_, title_, subtitle_}) {
            label->setAlignment(Qt::AlignCenter);
            all.addWidget(label);
            all.addSpacing(label == subtitle_ ? 16 : 5);
        }
    }

    QWidget* makeList() {
        auto* const scroller = new QScrollArea(this);
        scroller->setFixedHeight(kList);
        scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        scroller->setFrameShape(QFrame::NoFrame);
        scroller->setWidgetResizable(true);
        auto* const inset = new QWidget;
        auto* const around = new QVBoxLayout(inset);
        around->setContentsMargins(kInset, kInset, kInset, kInset);
        list_ = new QWidget(inset);
        list_->setObjectName("list");
        auto* const rows = new QVBoxLayout(list_);
        rows->setContentsMargins(0, 4, 0, 4);
        rows->setSpacing(0);
        for (const auto& node : manager_.nodes) {
            if (&node != &manager_.nodes.front()) {
                auto* const line = new QHBoxLayout;
                line->setContentsMargins(12, 0, 12, 0);
                line->addWidget(lines_.emplace_back(platform::divider(list_, Qt::Horizontal)));
                rows->addLayout(line);
            }
            rows->addWidget(rows_.emplace_back(new DiagnosticRowView(desktop_.graphics, list_)));
        }
        around->addWidget(list_);
        around->addStretch();
        scroller->setWidget(inset);
        scroller->viewport()->setAutoFillBackground(false);
        inset->setAutoFillBackground(false);
        return scroller_ = scroller;
    }

    QWidget* makeFooter() {
        auto* const footer = new QWidget(this);
        footer->setFixedHeight(kFooter);
        auto* const row = new QHBoxLayout(footer);
        row->setContentsMargins(kInset, 0, kInset, 0);
        spinner_ = new SpinnerView(kSpinner, footer);
        state_ = platform::plainLabel(footer, viewFont(12));
        copy_ = new QPushButton(QStringLiteral("Copy"), footer);
        run_ = new QPushButton(footer);
        run_->setDefault(true);
        for (QPushButton* const button : {copy_, run_}) {
            button->setFont(viewFont(13));  // the window's size is fixed, whatever the desktop's font
        }
        connect(copy_, &QPushButton::clicked, this, [this] { desktop_.clipboard.setText(manager_.report()); });
        connect(run_, &QPushButton::clicked, this, [this] { manager_.runAllTests(); });
        row->addWidget(spinner_);
        row->addWidget(state_);
        row->addStretch();
        row->addWidget(copy_);
        row->addWidget(run_);
        return footer;
    }

    void appearanceChanged() {
        const auto appearance = desktop_.events.appearance();
        const auto system = [&](SystemColor color) { return presenter::systemColor(color, appearance); };
        const auto ink = [&](double opacity) {
            return platform::Color::white(appearance == platform::Appearance::Dark ? 1 : 0, opacity);
        };
        symbol_->setPixmap(
            platform::viewPicture(desktop_.graphics.symbol("network", kSymbol, system(SystemColor::Blue)),
                                  {kSymbolSide, kSymbolSide}, *this));
        platform::setInk(*subtitle_, system(SystemColor::SecondaryLabel));
        platform::setInk(*state_, system(SystemColor::SecondaryLabel));
        spinner_->setColor(viewColor(system(SystemColor::SecondaryLabel)));
        for (QWidget* const line : lines_) {
            platform::setDividerColor(*line, ink(0.07));
        }
        platform::setDividerColor(*upperLine_, ink(0.12));
        platform::setDividerColor(*lowerLine_, ink(0.12));
        const auto name = [](const platform::Color& color) { return viewColor(color).name(QColor::HexArgb); };
        list_->setStyleSheet(
            QStringLiteral("#list { background: %1; border-radius: 8px }")
                .arg(name(appearance == platform::Appearance::Dark ? ink(0.06) : platform::Color::white(1, 0.8))));
        const auto button = QStringLiteral(
            "QPushButton { border: 1px solid %1; border-radius: 6px; padding: 4px 0;"
            " min-width: 64px; background: %2; color: %3 }"
            "QPushButton:focus { border-color: %4 }"
            "QPushButton:pressed { background: %5 }");
        const auto blue = system(SystemColor::Blue);
        copy_->setStyleSheet(button.arg(name(ink(0.2)), name(ink(0.04)), name(ink(0.85)), name(blue), name(ink(0.15))));
        run_->setStyleSheet(
            button.arg(name(blue), name(blue), QStringLiteral("white"), name(ink(0.6)), name(blue.withAlpha(0.7))) +
            QStringLiteral("QPushButton { min-width: %1px; max-width: %1px }").arg(kButton - 2));
        scroller_->setStyleSheet(platform::thinScrollBars(ink(0.3)));
        showStates();
    }

    void showStates() {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            rows_[i]->show(manager_.nodes[i], desktop_.events.appearance());
        }
        spinner_->setVisible(manager_.isTesting);
        state_->setText(manager_.isTesting ? QStringLiteral("Testing in progress...") : QStringLiteral("Ready"));
        run_->setText(manager_.isTesting ? QStringLiteral("Testing...") : QStringLiteral("Run Test"));
    }

    platform::Desktop& desktop_;
    NetworkDiagnosticManager& manager_;
    QLabel* symbol_ = nullptr;
    QLabel* title_ = nullptr;
    QLabel* subtitle_ = nullptr;
    QWidget* upperLine_ = nullptr;
    QWidget* lowerLine_ = nullptr;
    QScrollArea* scroller_ = nullptr;
    QWidget* list_ = nullptr;
    std::vector<DiagnosticRowView*> rows_;
    std::vector<QWidget*> lines_;
    SpinnerView* spinner_ = nullptr;
    QLabel* state_ = nullptr;
    QPushButton* copy_ = nullptr;
    QPushButton* run_ = nullptr;
    std::unique_ptr<platform::NotificationCenter::Observation> appearanceChanges_;
};

}  // namespace

std::unique_ptr<platform::View> makeNetworkDiagnosticView(platform::Platform& platform, platform::Desktop& desktop,
                                                          NetworkDiagnosticManager& manager) {
    return std::make_unique<platform::QtView>(std::make_unique<DiagnosticsWidget>(platform, desktop, manager));
}

}  // namespace glintar::diagnostics
