#include "menubar/StatusItems.h"

#include "config/Settings.h"
#include "menubar/CoinIcons.h"
#include "menubar/LineText.h"
#include "menubar/PillColors.h"
#include "menubar/PillPainter.h"
#include "platform/Desktop.h"
#include "platform/DesktopEvents.h"
#include "platform/Platform.h"
#include "platform/WorkQueue.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace glintar::menubar {

namespace {

constexpr platform::Font kTitleFont{.size = 14, .digits = platform::Font::Digits::AsDesigned};
constexpr platform::Font kMessageFont{.size = 12, .digits = platform::Font::Digits::AsDesigned};

/// A picture that stands on the line of the text beside it.
platform::PictureRun pill(platform::ImagePtr picture, std::string description) {
    return {.image = std::move(picture), .offset = {0, -7.5}, .description = std::move(description)};
}

void popUpMenu(platform::StatusItem& item) {
    item.popUpMenu({-10, item.frame().height - 40});
}

}  // namespace

/// One line on its way to the screen. Each picture is written by one piece of work, before it leaves the group; they
/// are read after the group has emptied.
struct StatusItems::Render {
    StatusLine line;
    std::optional<std::string> tooltip;
    Look look;
    std::uint64_t generation = 0;
    std::vector<platform::ImagePtr> coins;
    platform::ImagePtr gas;
};

StatusItems::StatusItems(platform::Platform& platform, platform::Desktop& desktop, Callbacks callbacks)
    : platform_(platform),
      desktop_(desktop),
      callbacks_(std::move(callbacks)),
      anchorItem_(desktop.statusBar.addItem(platform::StatusItem::Length::Square)),
      displayItem_(desktop.statusBar.addItem(platform::StatusItem::Length::Variable)),
      countdown_(desktop.graphics) {
    painter_ = makePainter();
    anchorItem_->setToolTip("Glintar");
    displayItem_->setToolTip("Waiting for data...");
    setUpMenu();
    drawAnchor();
    showLoading();
    appearanceObservation_ = platform.notifications.observe(platform::kAppearanceChanged, [this] { onLookChanged(); });
    desktop.statusBar.onScaleChanged = [this] { onLookChanged(); };
}

StatusItems::~StatusItems() {
    desktop_.statusBar.onScaleChanged = nullptr;
}

void StatusItems::setUpMenu() {
    for (auto* item : {anchorItem_.get(), displayItem_.get()}) {
        item->setMenu({{.title = "Quit", .action = [this] {
                            const auto quit = callbacks_.quit;  // it may destroy us
                            quit();
                        }}});
    }
    anchorItem_->onMouseUp = [this](platform::MouseButton) { openMenu(); };
    displayItem_->onMouseUp = [this](platform::MouseButton button) {
        if (button == platform::MouseButton::Right) {
            popUpMenu(*displayItem_);
        }
    };
}

void StatusItems::openMenu() {
    popUpMenu(*anchorItem_);
}

void StatusItems::drawAnchor() {
    static constexpr platform::Size kSize{28, 24};
    const auto& graphics = desktop_.graphics;
    auto icon = graphics.image("AppIcon");
    if (!icon) {
        icon = graphics.symbol("bitcoinsign.circle.fill", kSize.height, colorNamed("text", look().appearance));
    }
    if (icon) {
        anchorItem_->setImage(graphics.fitted(icon, kSize));
    }
}

void StatusItems::showLoading() {
    static constexpr const char* kText = "Loading...";
    displayItem_->setTitle({platform::TextRun{kText, kTitleFont, colorNamed("text", look().appearance)}}, kText);
}

void StatusItems::renderStatusItem(StatusLine line, std::optional<std::string> tooltip) {
    isHidden_ = false;
    const auto render = std::make_shared<Render>(std::move(line), std::move(tooltip), look(), ++generation_);
    wanted_ = render;
    render->coins.resize(render->line.coins.size());
    platform::DispatchGroup group;
    for (std::size_t i = 0; i < render->coins.size(); ++i) {
        const auto& part = render->line.coins[i];
        renderPart(render, group, part, painter_->renderKey(render->line, part), render->coins[i]);
    }
    if (render->line.gas) {
        renderPart(render, group, *render->line.gas, painter_->renderKey(*render->line.gas), render->gas);
    }
    group.notify(platform_.runLoop, lifetime_.guard([this, render] { compose(*render); }));
}

/// Takes the finished picture, or has it drawn. Part and picture belong to the render.
template <class Part>
void StatusItems::renderPart(const std::shared_ptr<Render>& render, platform::DispatchGroup group, const Part& part,
                             const std::string& key, platform::ImagePtr& picture) {
    picture = painter_->finishedPill(key);
    if (picture) {
        return;
    }
    group.enter();
    platform_.workQueue.async([render, group, &part, &picture, key, weak = std::weak_ptr(painter_)]() mutable {
        if (const auto painter = weak.lock()) {
            picture = painter->drawPill(key, part);
        }
        group.leave();
    });
}

void StatusItems::compose(const Render& render) {
    if (render.generation != generation_) {
        return;
    }
    const auto& line = render.line;
    const platform::TextRun separator{"   ", kTitleFont,
                                      systemColor(SystemColor::TertiaryLabel, render.look.appearance)};
    platform::AttributedText title;
    if (line.emptyText) {
        title.emplace_back(platform::TextRun{*line.emptyText, kMessageFont,
                                             systemColor(SystemColor::SecondaryLabel, render.look.appearance)});
    }
    for (std::size_t i = 0; i < line.coins.size(); ++i) {
        if (!title.empty()) {
            title.emplace_back(separator);
        }
        title.emplace_back(pill(render.coins[i], plainText(line.coins[i])));
    }
    if (line.gas) {
        title.emplace_back(separator);
        title.emplace_back(pill(render.gas, plainText(*line.gas)));
    }
    if (title.empty()) {
        displayItem_->setLength(platform::StatusItem::Length::Collapsed);
        return;
    }
    displayItem_->setLength(platform::StatusItem::Length::Variable);
    displayItem_->setTitle(std::move(title), plainText(line));
    displayItem_->setVisible(true);
    if (render.tooltip) {
        displayItem_->setToolTip(*render.tooltip);
    }
}

void StatusItems::hide() {
    isHidden_ = true;
    ++generation_;
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
    const auto now = look();
    if (auto picture = countdown_.pictureAt(elapsed, config::selectedSourceID(platform_.preferences), now)) {
        displayItem_->setImage(std::move(picture));
    }
    return Countdown::unchangedFor(elapsed, interval, now.scale);
}

void StatusItems::onLookChanged() {
    painter_ = makePainter();
    drawAnchor();
    const auto before = generation_;
    callbacks_.redisplay();
    // Without quotes there is nothing to display again, but what stands there in words has a colour too.
    if (generation_ != before) {
        return;
    }
    if (wanted_) {
        if (isHidden_) {
            return;
        }
        const auto last = wanted_;
        renderStatusItem(last->line, last->tooltip);
    } else {
        showLoading();
    }
}

bool StatusItems::isLineEmpty() const {
    return wanted_ && wanted_->line.isEmpty();
}

Look StatusItems::look() const {
    return {.appearance = desktop_.events.appearance(), .scale = desktop_.statusBar.scale()};
}

std::shared_ptr<PillPainter> StatusItems::makePainter() {
    return std::make_shared<PillPainter>(desktop_.graphics,
                                         CoinIcons::shared(platform_, desktop_.graphics).shared_from_this(), look(),
                                         lifetime_.guard([this] { callbacks_.redisplay(); }));
}

}  // namespace glintar::menubar
