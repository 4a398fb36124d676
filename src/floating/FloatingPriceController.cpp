#include "floating/FloatingPriceController.h"

#include "config/Settings.h"
#include "floating/CountdownRing.h"
#include "menubar/RefreshState.h"
#include "menubar/StatusBarController.h"
#include "platform/Desktop.h"
#include "platform/DesktopEvents.h"
#include "platform/Platform.h"
#include "platform/Pointer.h"
#include "platform/Preferences.h"
#include "platform/StatusBar.h"
#include "platform/Window.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace glintar::floating {

using namespace std::chrono_literals;
using platform::Point;
using platform::Rect;
using platform::Size;

namespace {

constexpr auto kFollowInterval = 20ms;
constexpr auto kRestInterval = 1s;
constexpr std::int64_t kStillTicks = 500;  // ten seconds
constexpr double kFadeStep = 0.05;
constexpr double kPointerSize = 12;
constexpr double kDefaultOffset = 16;
constexpr double kLargestOffset = 100'000;  // beyond all screens
constexpr double kRestDistance = 4;

/// Whether the user has been told that the panel cannot follow.
constexpr std::string_view kPointerNoticeShown = "pointerNoticeShown";

double readOffset(const platform::Preferences& preferences) {
    const double offset = preferences.real(config::kFloatOffset);
    return offset != 0 && std::isfinite(offset) ? std::clamp(offset, -kLargestOffset, kLargestOffset) : kDefaultOffset;
}

/// Below the right end of the status bar, or above it where the bar stands at the bottom of the screen. Beyond the left
/// edge of the primary screen it reaches no farther than the bar does.
Point restingPlace(const Rect& bar, const Size& panel) {
    const double x = std::max(bar.right() - panel.width, std::min(bar.x, 0.0));
    const double below = bar.y - kRestDistance - panel.height;
    return {x, below < 0 && bar.y >= 0 ? bar.top() + kRestDistance : below};
}

}  // namespace

FloatingPriceController::FloatingPriceController(platform::Platform& platform, platform::Desktop& desktop)
    : platform_(platform),
      desktop_(desktop),
      view_(platform.preferences, desktop.graphics),
      state_{.nextFetchTime = platform.runLoop.now(),
             .isTransparent = platform.preferences.boolean(config::kFloatTransparent)},
      offsetDistance_(readOffset(platform.preferences)) {
    auto& notifications = platform.notifications;
    observations_.push_back(notifications.observe(menubar::kDisplaySettingsChanged, [this] { reloadSettings(); }));
    observations_.push_back(notifications.observe(platform::kAppearanceChanged, [this] { refresh(); }));
}

FloatingPriceController::~FloatingPriceController() = default;

void FloatingPriceController::updateData(std::vector<config::Coin> coins, market::MarketDataMap quotes,
                                         std::optional<double> gasPrice, platform::Instant nextFetchTime) {
    state_.currentCoins = std::move(coins);
    state_.marketData = std::move(quotes);
    state_.currentGasPrice = gasPrice;
    state_.nextFetchTime = nextFetchTime;
    state_.sourceID = config::selectedSourceID(platform_.preferences);
    countDown();
}

void FloatingPriceController::showPanel() {
    setupWindow();
    const bool canFollow = desktop_.pointer.isSeenEverywhere();
    timer_ = platform_.runLoop.every(canFollow ? platform::Duration(kFollowInterval) : kRestInterval,
                                     [this] { trackMouse(); });
    catchUp(desktop_.pointer.position());
    if (belongsOnScreen()) {
        window_->orderFront();
    }
    arrange();
    if (!canFollow) {
        tellThatPointerIsHidden();
    }
}

void FloatingPriceController::hidePanel() {
    timer_.reset();
    countdownTimer_.reset();
    if (window_) {
        window_->orderOut();
    }
}

void FloatingPriceController::reloadSettings() {
    state_.isTransparent = platform_.preferences.boolean(config::kFloatTransparent);
    offsetDistance_ = readOffset(platform_.preferences);
    refresh();
    if (timer_ && alpha_ < 1) {
        setAlpha(1);
        window_->orderFront();
    }
    trackMouse();
}

void FloatingPriceController::setupWindow() {
    if (window_) {
        return;
    }
    window_ = desktop_.windows.makeOverlay("Glintar panel");
    window_->onSurroundingsChanged = [this] {
        // The scale is that of the top left corner: if that moved, it could go to and fro between two screens.
        refresh(Corner::TopLeft);
        arrange();
    };
    countdownTimer_ = platform_.runLoop.after(1s, [this] { countDown(); });
}

/// Lets nothing flash up that is out of date, nor anything at a place that is.
void FloatingPriceController::catchUp(const std::optional<Point>& pointer) {
    place(pointer);  // the picture depends on the screen
    countdownTimer_ ? refresh() : countDown();
    place(pointer);  // the place depends on the size
}

void FloatingPriceController::trackMouse() {
    if (!window_) {
        return;
    }
    if (!desktop_.pointer.isSeenEverywhere()) {
        if (timer_) {
            place(std::nullopt);
        }
    } else if (const auto pointer = desktop_.pointer.position()) {
        follow(*pointer);
    }
}

void FloatingPriceController::follow(const Point& pointer) {
    if (pointer != lastMouseLocation_) {
        lastMouseLocation_ = pointer;
        idleCounter_ = 0;
        place(pointer);
        setAlpha(1);
        place(pointer);  // what became visible may be larger than before
        return;
    }
    ++idleCounter_;
    if (idleCounter_ > kStillTicks && alpha_ > 0) {
        const double alpha = alpha_ - kFadeStep;
        setAlpha(alpha < kFadeStep / 2 ? 0 : alpha);  // twenty steps end at 0, whatever the rounding
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

void FloatingPriceController::place(const std::optional<Point>& pointer) {
    if (pointer) {
        const double distance = offsetDistance_ + kPointerSize;
        moveTo({pointer->x + distance, pointer->y - window_->frame().height - distance});
    } else if (const Rect bar = desktop_.statusBar.frame(); bar.width > 0) {
        moveTo(restingPlace(bar, window_->frame().size()));
    }
}

void FloatingPriceController::moveTo(const Point& origin) {
    if (window_->frame().origin() != origin) {
        window_->setFrameOrigin(origin);
    }
}

void FloatingPriceController::setAlpha(double alpha) {
    if (alpha == alpha_) {
        return;
    }
    const bool wasFaded = std::exchange(alpha_, alpha) <= 0;
    if (wasFaded) {
        countDown();
    }
    window_->setAlpha(alpha);
    if (wasFaded || alpha <= 0) {
        arrange();
    }
}

bool FloatingPriceController::belongsOnScreen() const {
    // Without a compositor there is no opacity.
    return timer_ && (alpha_ > 0 || window_->isTranslucent());
}

/// Puts the window on the screen or takes it off, and lets the countdown run while it can be seen.
void FloatingPriceController::arrange() {
    if (belongsOnScreen() != window_->isShown()) {
        window_->isShown() ? window_->orderOut() : window_->orderFront();
    }
    if (!canBeSeen()) {
        countdownTimer_.reset();
    } else if (!countdownTimer_) {
        countDown();
    }
}

void FloatingPriceController::countDown() {
    countdownTimer_.reset();
    const auto interval = menubar::RefreshState::shared(platform_).currentInterval;
    const platform::Seconds remaining = state_.nextFetchTime - platform_.runLoop.now();
    timeProgress_ = ring::timeProgress(remaining, interval);
    refresh();
    if (canBeSeen() && timeProgress_ > 0) {
        // A little late, so that the step is surely due by then.
        const auto wait = ring::unchangedFor(remaining, interval, window_->scale()) + 1ms;
        countdownTimer_ = platform_.runLoop.after(std::chrono::ceil<platform::Duration>(wait), [this] { countDown(); });
    }
}

void FloatingPriceController::refresh(Corner kept) {
    if (!canBeSeen()) {
        return;
    }
    const FloatingView::Surroundings surroundings{.appearance = desktop_.events.appearance(),
                                                  .scale = window_->scale(),
                                                  .isTranslucent = window_->isTranslucent()};
    if (!view_.update(state_, surroundings, timeProgress_)) {
        return;
    }
    window_->setPicture(view_.picture(), view_.margin());
    const Rect frame = window_->frame();
    if (const Size size = view_.fittingSize(); size != frame.size()) {
        const double y = kept == Corner::TopLeft ? frame.top() - size.height : frame.y;
        window_->setFrame({frame.x, y, size.width, size.height});
        if (!desktop_.pointer.isSeenEverywhere()) {
            place(std::nullopt);
        }
    }
}

}  // namespace glintar::floating
