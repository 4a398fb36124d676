#include "settings/settingsView.h"

#include "platform/qt/windows/QtView.h"
#include "settings/APISettingsView.h"
#include "settings/AboutView.h"
#include "settings/PartsView.h"
#include "settings/coinsSettingsView.h"
#include "settings/displaymodeSettingsView.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace glintar::settings {

namespace {

constexpr QSize kTabSize(450, 420);
constexpr std::array<const char*, kTabs.size()> kMnemonics{"&Coins", "Data &Source", "&Display", "C&ontact", "&About"};

/// Adds what the Tab key reaches in the widget, in the order in which it was made; of options the chosen one.
void collectStops(const QWidget& widget, std::vector<QWidget*>& stops) {
    for (QObject* const child : widget.children()) {
        auto* const part = qobject_cast<QWidget*>(child);
        if (part == nullptr || part->isHidden() || part->isWindow()) {
            continue;
        }
        const auto* const option = qobject_cast<QRadioButton*>(part);
        if ((part->focusPolicy() & Qt::TabFocus) != 0 && part->focusProxy() == nullptr && part->isEnabled() &&
            (option == nullptr || option->isChecked())) {
            stops.push_back(part);
        }
        collectStops(*part, stops);
    }
}

class settingsView final : public QWidget {  // NOLINT(readability-identifier-naming): a given name
public:
    settingsView(settingsViewModel& model, const platform::Graphics& graphics) : model_(model), graphics_(graphics) {
        auto* const all = new QVBoxLayout(this);
        tabs_ = new QTabWidget(this);
        tabs_->setMinimumSize(kTabSize);
        tabs_->tabBar()->setElideMode(Qt::ElideNone);
        tabs_->setUsesScrollButtons(false);
        for (const char* const title : kMnemonics) {
            auto* const page = new QWidget;
            (new QVBoxLayout(page))->setContentsMargins(0, 0, 0, 0);
            tabs_->addTab(page, title);
        }
        showIcons();
        all->addWidget(tabs_);
        addClose(*all);
        tabs_->tabBar()->setFocus();
        QObject::connect(tabs_, &QTabWidget::currentChanged, this, [this](int tab) {
            fill(tab);
            model_.select(kTabs.at(static_cast<std::size_t>(tab)).tag);
        });
        model_.onChange = [this] { showTab(); };
        showTab();
        fill(tabs_->currentIndex());
    }

    settingsView(const settingsView&) = delete;
    settingsView& operator=(const settingsView&) = delete;
    ~settingsView() override { model_.onChange = nullptr; }

protected:
    /// Qt's own order is that in which widgets got their window, which rows that come and go disturb.
    bool focusNextPrevChild(bool next) override {
        std::vector<QWidget*> stops{tabs_->tabBar()};
        collectStops(*tabs_->currentWidget(), stops);
        stops.push_back(close_);
        const auto now = std::ranges::find(stops, focusWidget());
        const auto at =
            now == stops.end() ? (next ? stops.size() - 1 : 0) : static_cast<std::size_t>(now - stops.begin());
        focusOn(*stops[(at + (next ? 1 : stops.size() - 1)) % stops.size()],
                next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }

    void changeEvent(QEvent* event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::PaletteChange && tabs_ != nullptr) {
            showIcons();
        }
    }

private:
    void addClose(QVBoxLayout& all) {
        auto* const close = close_ = new QPushButton("C&lose", this);
        close->setObjectName("close");
        close->setStyleSheet(
            "#close { background: #0a66d6; color: white; border: 2px solid transparent; border-radius: 8px;"
            " min-width: 76px; padding: 3px 0; }"
            "#close:focus { border-color: palette(window-text); } #close:pressed { background: #084c9e; }");
        QObject::connect(close, &QAbstractButton::clicked, this, [this] { model_.close(); });
        auto* const row = new QHBoxLayout;
        row->addStretch();
        row->addWidget(close);
        row->addStretch();
        all.addLayout(row);
    }

    /// A tab is made when it is first shown, and then kept.
    void fill(int tab) {
        QLayout& page = *tabs_->widget(tab)->layout();
        if (page.isEmpty()) {
            page.addWidget(makeTab(tab));
        }
    }

    QWidget* makeTab(int tab) {
        switch (tab) {
            case 0:
                return new coinsSettingsView(model_.coins, graphics_);
            case 1:
                return new APISettingsView(model_, graphics_);
            case 2:
                return new displaymodeSettingsView(model_.display());
            case 3:
                return new ContactSettingsView(model_.about, graphics_);
            default:
                return new AboutView(model_.about, graphics_);
        }
    }

    void showIcons() {
        const QSize size = tabs_->iconSize();
        const double ratio = devicePixelRatioF();
        QPixmap star(size * ratio);
        star.setDevicePixelRatio(ratio);
        star.fill(Qt::transparent);
        QPainter painter(&star);
        paintSymbol(painter, graphics_, "star", size.height() * 0.8, toneColor(palette(), Tone::Primary),
                    QRect(QPoint(), size));
        painter.end();
        for (int tab = 0; tab < tabs_->count(); ++tab) {
            tabs_->setTabIcon(tab, star);
        }
    }

    void showTab() {
        for (std::size_t tab = 0; tab < kTabs.size(); ++tab) {
            if (kTabs.at(tab).tag == model_.selectedTab) {
                tabs_->setCurrentIndex(static_cast<int>(tab));
            }
        }
    }

    settingsViewModel& model_;
    const platform::Graphics& graphics_;
    QTabWidget* tabs_ = nullptr;
    QPushButton* close_ = nullptr;
};

}  // namespace

std::unique_ptr<platform::View> makeSettingsView(settingsViewModel& model, const platform::Graphics& graphics) {
    return std::make_unique<platform::QtView>(std::make_unique<settingsView>(model, graphics));
}

}  // namespace glintar::settings
