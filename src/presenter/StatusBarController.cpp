#include "presenter/StatusBarController.h"

#include "config/Settings.h"
#include "keystore/KeychainHelper.h"
#include "market/CryptoService.h"
#include "platform/Console.h"
#include "platform/DesktopEvents.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/Registry.h"
#include "presenter/RefreshState.h"
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
constexpr auto kDebounceWindow = 2s;
constexpr auto kForcedDelay = 10ms;
constexpr auto kTimerDelay = 200ms;

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
      currentDisplayMode_(displayModeOf(displayModeNumber())),
      lastGasSource_(platform.preferences.integer(config::kGasSource)),
      lastShowGasFee_(platform.preferences.boolean(config::kShowGasFee)) {
    const auto observe = [&](std::string_view name, void (StatusBarController::*handle)()) {
        observations_.push_back(platform.notifications.observe(name, [this, handle] { (this->*handle)(); }));
    };
    observe(market::kCoolDownEnded, &StatusBarController::forceFullUpdate);
    observe(config::kCoinsUpdated, &StatusBarController::onSettingsChanged);
    observe(config::kDisplayModeChanged, &StatusBarController::onDisplayModeChanged);
    observe(config::kDisplaySettingsChanged, &StatusBarController::onDisplaySettingsChanged);
    observe(platform::kMachineResumed, &StatusBarController::onResumed);
    observe(platform::kNetworkCameBack, &StatusBarController::onNetworkBack);
}

StatusBarController::~StatusBarController() = default;

void StatusBarController::show() {
    surface_.show(currentDisplayMode_);
}

void StatusBarController::start() {
    restartTimers();
    firstRefresh_ = platform_.runLoop.after(kStartDelay, [this] { refreshAll(Scope::Everything); });
}

void StatusBarController::refreshOnce() {
    if (config::loadSavedCoins(platform_).empty()) {
        renderStatusItem({}, {}, std::nullopt);
        surface_.refreshCompleted();
    } else {
        performFetch(Scope::Everything);
    }
}

std::int64_t StatusBarController::displayModeNumber() const {
    return options_.displayMode.value_or(platform_.preferences.integer(config::kDisplayMode));
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
        refreshAll(Scope::Everything);
    }
}

void StatusBarController::onSettingsChanged() {
    isApiKeyInvalid_ = false;
    refreshAll(Scope::Everything);
}

void StatusBarController::restartTimers() {
    timer_.reset();
    state_.currentInterval = calculateRefreshInterval();
    expectNextFetch();
    timer_ = platform_.runLoop.every(asDuration(state_.currentInterval), [this] { onTimer(); });
    restartProgress();
}

void StatusBarController::expectNextFetch() {
    const auto interval = asDuration(state_.currentInterval);
    state_.nextFetchTime = platform_.runLoop.now() + interval;
    nextFetchDue_ = platform_.runLoop.bootNow() + interval;
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

/// The timers stood still while the machine slept, the markets did not. The servers have hung up meanwhile, which a
/// connection learns only when nothing has come for long.
void StatusBarController::onResumed() {
    isFetchDoubtful_ = isFetching_;
    if (timer_ && platform_.runLoop.bootNow() >= nextFetchDue_) {
        isFetchStale_ = isFetching_;
        platform_.http.dropConnections();
        refreshSoon();
    }
}

void StatusBarController::onNetworkBack() {
    isFetchDoubtful_ = isFetching_;
    if (hasFailed_ || !isFetching_) {  // a fetch that may well succeed is left alone
        platform_.http.dropConnections();
    }
    if (timer_ && hasFailed_) {
        refreshSoon();
    }
}

/// A refresh now instead of the next one that was due. Two seconds lie between requests, however often the network
/// comes and goes.
void StatusBarController::refreshSoon() {
    const auto now = platform_.runLoop.now();
    const auto earliest = lastRequestTime_ ? *lastRequestTime_ + kDebounceWindow : now;
    restartTimers();
    pendingRequestWorkItem_ = platform_.runLoop.after(std::max<platform::Duration>(kForcedDelay, earliest - now),
                                                      [this] { performFetch(Scope::Everything); });
}

platform::Seconds StatusBarController::calculateRefreshInterval() {
    auto& console = platform_.console;
    if (isApiKeyInvalid_) {
        console.debug("🚫 [Timer] API Key 已被标记为无效或错误，强制降级 -> 60.0秒");
        return kNormalInterval;
    }
    const auto source = config::selectedSourceID(platform_.preferences);
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
        currentGasPrice_.reset();
        restartTimers();
    }
    redisplayFromCache();
    fetchAndDisplayPrice(Urgency::Forced, scope);
}

void StatusBarController::fetchAndDisplayPrice(Urgency urgency, Scope scope) {
    const bool isForced = urgency == Urgency::Forced;
    if (!isForced && lastRequestTime_ && platform_.runLoop.now() - *lastRequestTime_ < kDebounceWindow) {
        platform_.console.debug("✋ [System] 请求防抖");
        return;
    }
    pendingRequestWorkItem_ =
        platform_.runLoop.after(isForced ? kForcedDelay : kTimerDelay, [this, scope] { performFetch(scope); });
}

void StatusBarController::onDisplaySettingsChanged() {
    const auto gasSource = platform_.preferences.integer(config::kGasSource);
    const bool showGasFee = platform_.preferences.boolean(config::kShowGasFee);
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

void StatusBarController::checkVisibilityAfter(platform::Duration delay) {
    if (surface_.canBeCovered()) {
        platform_.runLoop.postAfter(delay, lifetime_.guard([this] { surface_.checkVisibility(); }));
    }
}

}  // namespace glintar::presenter
