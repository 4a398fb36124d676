#include "presenter/StatusBarController.h"

#include "config/Settings.h"
#include "keystore/KeychainHelper.h"
#include "market/CryptoService.h"
#include "platform/Console.h"
#include "platform/DesktopEvents.h"
#include "platform/Machine.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/Registry.h"
#include "presenter/RefreshState.h"
#include "presenter/SharedRefresh.h"
#include "presenter/StatusSurface.h"
#include "text/Unicode.h"

#include <fmt/format.h>

namespace glintar::presenter {

using namespace std::chrono_literals;

namespace {

constexpr platform::Seconds kNormalInterval{60.0};
constexpr platform::Seconds kKeyInterval{30.0};
constexpr auto kStartDelay = 1s;
constexpr auto kProgressInterval = 100ms;

DisplayMode displayModeOf(std::int64_t number) {
    return number == 1 ? DisplayMode::Panel : DisplayMode::Line;
}

platform::Duration asDuration(platform::Seconds seconds) {
    return std::chrono::duration_cast<platform::Duration>(seconds);
}

}  // namespace

StatusBarController::StatusBarController(platform::Platform& platform, StatusSurface& surface, Options options)
    : platform_(platform),
      surface_(surface),
      options_(options),
      state_(RefreshState::shared(platform)),
      currentDisplayMode_(displayModeOf(displayModeNumber())) {
    const auto settings = config::Settings::load(platform.preferences);
    cachedSource_ = settings.selectedSourceID;
    lastGasSource_ = settings.gasSource;
    lastShowGasFee_ = settings.showGasFee;
    const auto observe = [&](std::string_view name, void (StatusBarController::*handle)()) {
        observations_.push_back(platform.notifications.observe(name, [this, handle] { (this->*handle)(); }));
    };
    observe(market::kCoolDownEnded, &StatusBarController::forceFullUpdate);
    observe(config::kCoinsUpdated, &StatusBarController::onSettingsChanged);
    observe(config::kDisplayModeChanged, &StatusBarController::onDisplayModeChanged);
    observe(config::kDisplaySettingsChanged, &StatusBarController::onDisplaySettingsChanged);
    observe(platform::kActiveApplicationChanged, &StatusBarController::onActiveAppChanged);
    observe(platform::kMachineResumed, &StatusBarController::onResumed);
    observe(platform::kNetworkCameBack, &StatusBarController::onNetworkBack);
    if (options.board) {
        shared_ = std::make_unique<SharedRefresh>(*options.board, platform.runLoop);
        options.board->onPosted = [this] { onPosted(); };
    }
}

StatusBarController::~StatusBarController() {
    if (options_.board) {
        options_.board->onPosted = nullptr;
    }
}

void StatusBarController::show() {
    surface_.show(currentDisplayMode_);
}

void StatusBarController::start() {
    restartTimers();
    firstRefresh_ = platform_.runLoop.after(kStartDelay, [this] { refreshAll(Scope::Everything); });
}

void StatusBarController::refreshOnce() {
    if (config::loadSavedCoins(platform_).empty()) {
        surface_.showLine({.sourceId = cachedSource_,
                           .emptyText = emptyLineText(std::nullopt),
                           .time = platform_.localTime.clockText(platform_.runLoop.wallNow())},
                          "⚠️ No Price Data @ " + platform_.localTime.clockText(platform_.runLoop.wallNow()));
        surface_.refreshCompleted();
    } else {
        state_.currentInterval = wish().key.empty() ? kNormalInterval : kKeyInterval;
        expectNextFetch();
        performFetch(Scope::Everything);
    }
}

std::int64_t StatusBarController::displayModeNumber() const {
    return options_.displayMode.value_or(config::Settings::load(platform_.preferences).displayMode);
}

void StatusBarController::onDisplayModeChanged() {
    const auto number = displayModeNumber();
    currentDisplayMode_ = displayModeOf(number);
    platform_.console.debug(fmt::format("🔄 [System] 模式切换 -> {}", number));
    show();
    restartProgress();
    if (cachedMarketData_) {
        redisplayFromCache();
    } else {
        refreshAll(Scope::Everything);  // which shows that there is nothing yet
    }
}

void StatusBarController::onSettingsChanged() {
    isApiKeyInvalid_ = false;
    forgetWhatIsNotWanted();
    refreshAll(Scope::Everything);
}

void StatusBarController::restartTimers() {
    timer_.reset();
    state_.currentInterval = calculateRefreshInterval();
    expectNextFetch();
    if (isPaused_) {
        return;
    }
    cycle_.isRunning = true;
    timer_ = platform_.runLoop.every(asDuration(state_.currentInterval), [this] { onTimer(); });
    restartProgress();
}

void StatusBarController::expectNextFetch() {
    const auto interval = asDuration(state_.currentInterval);
    state_.nextFetchTime = platform_.runLoop.now() + interval;
    cycle_.nextFetchDue = platform_.runLoop.bootNow() + interval;
}

void StatusBarController::onTimer() {
    fetchAndDisplayPrice(Urgency::Timer, Scope::Everything);
    expectNextFetch();
    checkVisibilityAfter(1s);
}

bool StatusBarController::showsProgress() const {
    return currentDisplayMode_ == DisplayMode::Line && surface_.showsProgress();
}

void StatusBarController::restartProgress() {
    progressTimer_.reset();
    if (showsProgress()) {
        progressTimer_ = platform_.runLoop.after(kProgressInterval, [this] { onProgress(); });
    }
}

/// A countdown that is seen moves ten times a second at most, and wakes nobody up while it looks the same. One that is
/// not seen any more ends, until a line comes that has one.
void StatusBarController::onProgress() {
    progressTimer_.reset();
    if (!showsProgress()) {
        return;
    }
    const platform::Seconds remaining = state_.nextFetchTime - platform_.runLoop.now();
    const double elapsed = (state_.currentInterval - remaining) / state_.currentInterval;
    const auto unchanged = surface_.showProgress(
        {.elapsed = std::clamp(elapsed, 0.0, 1.0), .remaining = remaining, .interval = state_.currentInterval});
    const auto wait =
        std::clamp(asDuration(unchanged), platform::Duration(kProgressInterval), asDuration(state_.currentInterval));
    progressTimer_ = platform_.runLoop.after(wait, [this] { onProgress(); });
}

void StatusBarController::onResumed() {
    follow(afterSleep(cycle_, platform_.runLoop.bootNow()));
}

void StatusBarController::onNetworkBack() {
    follow(afterNetworkCameBack(cycle_));
}

void StatusBarController::follow(const WakeUp& wakeUp) {
    if (wakeUp.dropsConnections) {
        platform_.http.dropConnections();
    }
    if (wakeUp.refreshes) {
        refreshSoon();
    }
}

void StatusBarController::pause() {
    isPaused_ = true;
    cycle_.isRunning = false;
    if (shared_) {
        shared_->leave();
    }
    timer_.reset();
    progressTimer_.reset();
}

void StatusBarController::resume() {
    if (!std::exchange(isPaused_, false)) {
        return;
    }
    cycle_.isRunning = true;
    if (shared_) {
        onPosted();  // another may have refreshed meanwhile
    }
    const auto remaining = cycle_.nextFetchDue - platform_.runLoop.bootNow();
    timer_ = platform_.runLoop.after(std::max<platform::Duration>(remaining, 0s), [this] { refreshSoon(); });
}

void StatusBarController::refreshSoon() {
    restartTimers();
    pendingRequestWorkItem_ = platform_.runLoop.after(delayOfEarlyRefresh(cycle_, platform_.runLoop.now()),
                                                      [this] { performFetch(Scope::Everything); });
}

platform::Seconds StatusBarController::calculateRefreshInterval() {
    auto& console = platform_.console;
    if (isApiKeyInvalid_) {
        console.debug("🚫 [Timer] API Key 已被标记为无效或错误，强制降级 -> 60.0秒");
        return kNormalInterval;
    }
    const auto source = config::Settings::load(platform_.preferences).selectedSourceID;
    const auto key = keystore::KeychainHelper(platform_).apiKeyOf(source);
    console.debug("⏱ [Timer] 计算刷新频率 (通用逻辑)...");
    console.debug("   - 当前源: " + source);
    console.debug("   - 检查Key: " + keystore::KeychainHelper::keyNameOf(source));
    console.debug("   - Key状态: " +
                  (key.empty() ? "❌ 未设置" : fmt::format("✅ 有效 (长度:{})", text::characterCount(key))));
    console.debug(key.empty() ? "   👉 结论: 默认模式 -> 60.0秒" : "   👉 结论: 加速模式 -> 30.0秒");
    return key.empty() ? kNormalInterval : kKeyInterval;
}

void StatusBarController::refreshAll(Scope scope) {
    surface_.updateDashboardItem("Arbitrage Dashboard", true);
    if (scope == Scope::Everything) {
        restartTimers();
    }
    redisplayFromCache();
    fetchAndDisplayPrice(Urgency::Forced, scope);
}

void StatusBarController::fetchAndDisplayPrice(Urgency urgency, Scope scope) {
    const auto delay = delayOf(urgency, cycle_, platform_.runLoop.now());
    if (!delay) {
        platform_.console.debug("✋ [System] 请求防抖");
        return;
    }
    pendingRequestWorkItem_ = platform_.runLoop.after(*delay, [this, scope] { performFetch(scope); });
}

void StatusBarController::onDisplaySettingsChanged() {
    const auto settings = config::Settings::load(platform_.preferences);
    const auto gasSource = settings.gasSource;
    const bool showGasFee = settings.showGasFee;
    if (gasSource != lastGasSource_) {
        lastGasSource_ = gasSource;
        platform_.console.debug("⛽️ Gas Source Changed -> Cleared Cache & Fetching");
        currentGasPrice_.reset();
        redisplayFromCache();
        refreshAll(Scope::OnlyGas);
    } else if (showGasFee == lastShowGasFee_) {
        redisplayFromCache();
    } else {
        lastShowGasFee_ = showGasFee;
        platform_.console.debug(showGasFee ? "⛽️ Gas Fee Enabled -> Fetching" : "⛽️ Gas Fee Disabled -> Refreshing UI");
        if (showGasFee) {
            refreshAll(Scope::OnlyGas);
        } else {
            redisplayFromCache();
        }
    }
}

void StatusBarController::onActiveAppChanged() {
    checkVisibilityAfter(1s);
}

void StatusBarController::checkVisibilityAfter(platform::Duration delay) {
    if (surface_.canBeCovered()) {
        platform_.runLoop.postAfter(delay, lifetime_.guard([this] { surface_.checkVisibility(); }));
    }
}

}  // namespace glintar::presenter
