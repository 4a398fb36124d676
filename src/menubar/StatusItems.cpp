#include "menubar/StatusItems.h"

#include "config/Settings.h"
#include "menubar/PillColors.h"
#include "platform/Desktop.h"
#include "platform/DesktopEvents.h"
#include "platform/Platform.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace glintar::menubar {

StatusItems::StatusItems(platform::Platform& platform, platform::Desktop& desktop, Callbacks callbacks)
    : platform_(platform),
      desktop_(desktop),
      callbacks_(std::move(callbacks)),
      anchorItem_(desktop.statusBar.addItem(platform::StatusItem::Length::Square)),
      displayItem_(desktop.statusBar.addItem(platform::StatusItem::Length::Variable)),
      renderer_(platform, desktop, [this] { callbacks_.redisplay(); }),
      countdown_(desktop.graphics),
      sourceAtStart_(config::Settings::load(platform.preferences).selectedSourceID),
      space_(platform, desktop, [this](std::string status) { menu_->setStatus(std::move(status)); }) {
    anchorItem_->setToolTip("Glintar");
    displayItem_->setToolTip("Waiting for data...");
    setUpMenu(callbacks_.menu);
    drawAnchor();
    showLoading();
    appearanceObservation_ = platform.notifications.observe(platform::kAppearanceChanged, [this] { onThemeChanged(); });
    desktop.statusBar.onScaleChanged = [this] { onThemeChanged(); };
}

StatusItems::~StatusItems() {
    desktop_.statusBar.onScaleChanged = nullptr;
}

void StatusItems::setUpMenu(StatusMenu::Actions actions) {
    menu_.emplace(std::move(actions), [this](platform::Menu menu) { anchorItem_->setMenu(std::move(menu)); });
    anchorItem_->onMouseUp = [this](platform::MouseButton) { openMenu(); };
    displayItem_->onMouseUp = [this](platform::MouseButton) {
        if (callbacks_.pricePanelClicked) {
            callbacks_.pricePanelClicked();
        }
    };
}

void StatusItems::openMenu() {
    anchorItem_->popUpMenu({-10, anchorItem_->frame().height - 40});
}

void StatusItems::checkVisibility() {
    if (!showsProgress()) {
        return;
    }
    const auto sight = displayItem_->sight();
    const int coins = wanted_ ? static_cast<int>(wanted_->coins.size()) : 0;
    const int fees = wanted_ && wanted_->gas ? 1 : 0;  // behind the coins, so that it is left out first
    coinsLeftOut_ = std::clamp(sight.leftOut - fees, 0, coins);
    setToolTip();
    space_.check(sight);
}

void StatusItems::setToolTip() {
    if (!tooltip_) {
        return;
    }
    const bool isOne = coinsLeftOut_ == 1;
    displayItem_->setToolTip(coinsLeftOut_ == 0 ? *tooltip_
                                                : fmt::format("{}\n{} more {} not fit", *tooltip_, coinsLeftOut_,
                                                              isOne ? "coin does" : "coins do"));
}

void StatusItems::drawAnchor() {
    static constexpr platform::Size kSize{28, 24};
    const auto& graphics = desktop_.graphics;
    auto icon = graphics.image("AppIcon");
    if (!icon) {
        icon =
            graphics.symbol("bitcoinsign.circle.fill", kSize.height, colorNamed("text", renderer_.look().appearance));
    }
    if (icon) {
        anchorItem_->setImage(graphics.fitted(icon, kSize));
    }
}

void StatusItems::showLoading() {
    static constexpr const char* kText = "Loading...";
    displayItem_->setTitle({platform::TextRun{kText, kTitleFont, colorNamed("text", renderer_.look().appearance)}},
                           kText);
}

void StatusItems::renderStatusItem(presenter::StatusLine line, std::optional<std::string> tooltip) {
    isHidden_ = false;
    wanted_ = std::make_shared<const presenter::StatusLine>(std::move(line));
    tooltip_ = std::move(tooltip);
    renderer_.render(wanted_, [this](LineTitle title) { showTitle(std::move(title)); });
}

void StatusItems::showTitle(LineTitle title) {
    if (isLineEmpty()) {
        displayItem_->setLength(platform::StatusItem::Length::Collapsed);
        return;
    }
    displayItem_->setLength(platform::StatusItem::Length::Variable);
    displayItem_->setTitle(std::move(title.text), std::move(title.description));
    displayItem_->setVisible(true);
    setToolTip();
}

void StatusItems::hide() {
    isHidden_ = true;
    renderer_.cancel();
    displayItem_->setVisible(false);
    displayItem_->setLength(platform::StatusItem::Length::Collapsed);
}

void StatusItems::show() {
    if (!std::exchange(isHidden_, false)) {
        return;  // an empty line stays collapsed
    }
    if (!isLineEmpty()) {
        displayItem_->setLength(platform::StatusItem::Length::Variable);
    }
    displayItem_->setVisible(true);
}

platform::Seconds StatusItems::showProgress(double elapsed, platform::Seconds interval) {
    const Look now = renderer_.look();
    if (auto picture = countdown_.pictureAt(elapsed, wanted_ ? wanted_->sourceId : sourceAtStart_, now)) {
        displayItem_->setImage(std::move(picture));
    }
    return Countdown::unchangedFor(elapsed, interval, now.scale);
}

void StatusItems::onThemeChanged() {
    renderer_.onThemeChanged();
    drawAnchor();
    const auto before = wanted_;
    callbacks_.redisplay();
    // Without quotes there is nothing to display again, but what stands there in words has a colour too.
    if (wanted_ != before) {
        return;
    }
    if (!wanted_) {
        showLoading();
    } else if (!isHidden_) {
        renderStatusItem(*wanted_, tooltip_);
    }
}

}  // namespace glintar::menubar
