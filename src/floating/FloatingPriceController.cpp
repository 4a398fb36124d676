#include "floating/FloatingPriceController.h"

#include "config/Settings.h"
#include "floating/PanelPlaces.h"
#include "platform/Desktop.h"
#include "platform/DesktopEvents.h"
#include "platform/Platform.h"
#include "platform/Pointer.h"
#include "platform/Preferences.h"
#include "platform/StatusBar.h"
#include "platform/Window.h"
#include "presenter/RefreshState.h"

#include <chrono>
#include <string_view>
#include <utility>

namespace glintar::floating {

using namespace std::chrono_literals;
using platform::Point;
using platform::Rect;
using platform::Size;

namespace {

constexpr auto kFollowInterval = 20ms;
constexpr auto kRestInterval = 1s;
/// Whether the user has been told that the panel cannot follow.
constexpr std::string_view kPointerNoticeShown = "pointerNoticeShown";

}  // namespace

FloatingPriceController::FloatingPriceController(platform::Platform& platform, platform::Desktop& desktop)
    : platform_(platform), desktop_(desktop), view_(desktop.graphics), state_{.nextFetchTime = platform.runLoop.now()} {
    loadSettings();
    auto& notifications = platform.notifications;
    observations_.push_back(notifications.observe(config::kDisplaySettingsChanged, [this] { reloadSettings(); }));
    observations_.push_back(notifications.observe(platform::kAppearanceChanged, [this] {
        view_.forgetLook();
        present();
    }));
}

FloatingPriceController::~FloatingPriceController() = default;

void FloatingPriceController::updateData(std::vector<config::Coin> coins, market::MarketDataMap quotes,
                                         std::optional<market::NetworkFee> gasPrice, platform::Instant nextFetchTime) {
    state_.currentCoins = std::move(coins);
    state_.marketData = std::move(quotes);
    state_.currentGasPrice = gasPrice;
    state_.nextFetchTime = nextFetchTime;
    loadSettings();
    state_.sourceID = state_.settings.selectedSourceID;
    countDown();
    const auto wait = nextUpdate_ - platform_.runLoop.now();
    if (wait <= platform::Duration::zero()) {
        presentUpdate();
    } else if (canBeSeen()) {
        nextDrawing_ = platform_.runLoop.after(wait, [this] { presentUpdate(); });
    }
}

void FloatingPriceController::showPanel() {
    if (timer_) {
        return;
    }
    const bool isNew = !window_;
    if (isNew) {
        setupWindow();
    }
    const bool canFollow = desktop_.pointer.isSeenEverywhere();
    timer_ = platform_.runLoop.every(canFollow ? platform::Duration(kFollowInterval) : kRestInterval,
                                     [this] { trackMouse(); });
    if (const auto pointer = desktop_.pointer.position(); pointer && (isNew || fade_.isElsewhere(*pointer))) {
        moveBeside(*pointer);
        present(Corner::TopLeft);
    } else {
        present();
    }
    if (!canFollow) {
        tellThatPointerIsHidden();
    }
}

void FloatingPriceController::hidePanel() {
    timer_.reset();
    present();
}

void FloatingPriceController::loadSettings() {
    state_.settings = config::Settings::load(platform_.preferences);
    state_.isTransparent = state_.settings.floatTransparent;
    offsetDistance_ = state_.settings.floatOffset;
}

void FloatingPriceController::reloadSettings() {
    loadSettings();
    if (!window_) {
        return;
    }
    const bool returns = timer_ && fade_.alpha() < 1;
    if (returns) {
        fade_.restore();
    }
    present();
    if (returns) {
        window_->orderFront();
    }
    if (timer_) {
        trackMouse();
    }
}

void FloatingPriceController::setupWindow() {
    window_ = desktop_.windows.makeOverlay("Glintar panel");
    // The scale is that of the top left corner: if that moved, it could go to and fro between two screens.
    window_->onSurroundingsChanged = [this] { present(Corner::TopLeft); };
    ring_.emplace(platform_.runLoop.now());
}

// ---- Where it is

void FloatingPriceController::trackMouse() {
    if (!desktop_.pointer.isSeenEverywhere()) {
        restBelowBar();
        return;
    }
    const auto pointer = desktop_.pointer.position();
    if (!pointer) {
        return;  // out of sight for a while
    }
    const bool hasMoved = fade_.look(*pointer);
    if (hasMoved) {
        moveBeside(*pointer);
    }
    if (fade_.alpha() != window_->alpha()) {
        present(hasMoved ? Corner::TopLeft : Corner::BottomLeft);
    }
}

void FloatingPriceController::moveTo(const Point& origin) {
    if (origin != window_->frame().origin()) {
        window_->setFrameOrigin(origin);
    }
}

void FloatingPriceController::moveBeside(const Point& pointer) {
    moveTo(placeBesidePointer(pointer, offsetDistance_, window_->frame().size()));
}

void FloatingPriceController::restBelowBar() {
    if (const Rect bar = desktop_.statusBar.frame(); bar.width > 0) {
        moveTo(placeBesideBar(bar, desktop_.statusBar.screen(), window_->frame().size()));
    }
}

void FloatingPriceController::tellThatPointerIsHidden() {
    if (!platform_.preferences.boolean(kPointerNoticeShown)) {
        desktop_.windows.notify("Glintar",
                                "This desktop does not tell programs where the pointer is. The price panel therefore "
                                "stays below the status bar instead of following the pointer.");
        platform_.preferences.setBoolean(kPointerNoticeShown, true);
    }
}

// ---- What it shows

/// Brings the window up to date, in an order in which nothing flashes up that is out of date: its picture and size,
/// how opaque it is, whether it is on the screen at all.
void FloatingPriceController::present(Corner kept) {
    nextDrawing_.reset();
    countDown();
    if (!window_) {
        return;
    }
    if (canBeSeen()) {
        draw(kept);
    }
    if (window_->alpha() != fade_.alpha()) {
        window_->setAlpha(fade_.alpha());
    }
    if (belongsOnScreen() != window_->isShown()) {
        window_->isShown() ? window_->orderOut() : window_->orderFront();
    }
    if (canBeSeen()) {
        if (const auto wait = ring_->unchangedFor(platform_.runLoop.now(), window_->scale())) {
            nextDrawing_ = platform_.runLoop.after(*wait, [this] { present(); });
        }
    }
}

void FloatingPriceController::draw(Corner kept) {
    const FloatingView::Surroundings surroundings{.appearance = desktop_.events.appearance(),
                                                  .scale = window_->scale(),
                                                  .isTranslucent = window_->isTranslucent()};
    if (view_.update(state_, surroundings, ring_->progress(platform_.runLoop.now()))) {
        window_->setPicture(view_.picture(), view_.margin());
    }
    const Rect frame = window_->frame();
    if (const Size size = view_.fittingSize(); size != frame.size()) {
        const double y = kept == Corner::TopLeft ? frame.top() - size.height : frame.y;
        window_->setFrame({frame.x, y, size.width, size.height});
    }
    if (!desktop_.pointer.isSeenEverywhere()) {
        restBelowBar();
    }
}

void FloatingPriceController::presentUpdate() {
    nextUpdate_ = platform_.runLoop.now() + kFollowInterval;
    present();
}

void FloatingPriceController::countDown() {
    if (ring_) {
        ring_->setNextRefresh(platform_.runLoop.now(), state_.nextFetchTime,
                              presenter::RefreshState::shared(platform_).currentInterval);
    }
}

bool FloatingPriceController::belongsOnScreen() const {
    // Without a compositor there is no opacity.
    return timer_ && (!fade_.isComplete() || window_->isTranslucent());
}

}  // namespace glintar::floating
