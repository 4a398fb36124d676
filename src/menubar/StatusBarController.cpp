#include "menubar/StatusBarController.h"

#include "config/Settings.h"
#include "keystore/KeychainHelper.h"
#include "market/CryptoService.h"
#include "menubar/RefreshState.h"
#include "menubar/StatusSurface.h"
#include "platform/Console.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/Registry.h"
#include "text/Unicode.h"

#include <fmt/format.h>

namespace glintar::menubar {

using namespace std::chrono_literals;

namespace {

constexpr platform::Seconds kNormalInterval{60.0};
constexpr platform::Seconds kKeyInterval{30.0};
constexpr auto kStartDelay = 1s;
constexpr auto kProgressInterval = 100ms;
constexpr auto kDebounceWindow = 2s;
constexpr auto kForcedDelay = 10ms;
constexpr auto kTimerDelay = 200ms;

platform::Duration asDuration(platform::Seconds seconds) {
    return std::chrono::duration_cast<platform::Duration>(seconds);
}

}  // namespace

StatusBarController::StatusBarController(platform::Platform& platform, StatusSurface& surface, Options options)
    : platform_(platform),
      surface_(surface),
      state_(RefreshState::shared(platform)),
      currentDisplayMode_(
          options.displayMode.value_or(static_cast<int>(platform.preferences.integer(config::kDisplayMode)))),
      lastGasSource_(platform.preferences.integer(config::kGasSource)),
      lastShowGasFee_(platform.preferences.boolean(config::kShowGasFee)) {
    auto& notifications = platform.notifications;
    observations_.push_back(notifications.observe(market::kCoolDownEnded, [this] { forceFullUpdate(); }));
    observations_.push_back(notifications.observe(config::kCoinsUpdated, [this] { onSettingsChanged(); }));
    observations_.push_back(notifications.observe(kDisplaySettingsChanged, [this] { onDisplaySettingsChanged(); }));
}

StatusBarController::~StatusBarController() = default;

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

void StatusBarController::onSettingsChanged() {
    isApiKeyInvalid_ = false;
    refreshAll(Scope::Everything);
}

void StatusBarController::restartTimers() {
    timer_.reset();
    progressTimer_.reset();
    state_.currentInterval = calculateRefreshInterval();
    const auto interval = asDuration(state_.currentInterval);
    state_.nextFetchTime = platform_.runLoop.now() + interval;
    timer_ = platform_.runLoop.every(interval, [this] { onTimer(); });
    if (surface_.showsProgress()) {
        progressTimer_ = platform_.runLoop.every(kProgressInterval, [this] { onProgress(); });
    }
}

void StatusBarController::onTimer() {
    fetchAndDisplayPrice(Urgency::Timer, Scope::Everything);
    state_.nextFetchTime = platform_.runLoop.now() + asDuration(state_.currentInterval);
    checkVisibilityAfter(1s);
}

void StatusBarController::onProgress() {
    if (currentDisplayMode_ != 0) {
        return;
    }
    const platform::Seconds remaining = state_.nextFetchTime - platform_.runLoop.now();
    const double elapsed = (state_.currentInterval - remaining) / state_.currentInterval;
    surface_.showProgress(std::clamp(elapsed, 0.0, 1.0), remaining);
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
    if (cachedMarketData_) {
        const auto coins = config::loadSavedCoins(platform_);
        if (currentDisplayMode_ == 0) {
            renderStatusItem(coins, *cachedMarketData_, std::nullopt);
        } else {
            updatePanel(coins);
        }
    }
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

}  // namespace glintar::menubar
