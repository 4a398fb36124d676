// The refresh cycle as its user lives it, in virtual time.

#include "keystore/KeychainHelper.h"
#include "platform/DesktopEvents.h"
#include "presenter/RefreshCycle.h"
#include "presenter/RefreshState.h"

#include <gmock/gmock.h>

namespace glintar::presenter {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(RefreshCycleTest, PricesComeASecondAfterTheStartAndThenEveryMinute) {
    make();
    controller->start();
    machine.advance(1s);
    EXPECT_EQ(quotesAsked(), 0);
    machine.advance(20ms);
    EXPECT_THAT(shownPrices(), ElementsAre("64000.00"));
    EXPECT_EQ(surface.tooltip, "Last Updated: 03:04:06");
    EXPECT_EQ(surface.dashboard, "Arbitrage Dashboard");
    machine.advance(60s);
    EXPECT_EQ(quotesAsked(), 1);
    machine.advance(1s);  // the timer counts from the first refresh; its tick waits 0.2 s
    EXPECT_EQ(quotesAsked(), 2);
    machine.advance(600s);
    EXPECT_EQ(quotesAsked(), 12);
}

TEST_F(RefreshCycleTest, AKeyHalvesTheIntervalForItsOwnSource) {
    keystore::KeychainHelper(machine.platform()).save("CG-123", "apiKey_coingecko");
    begin();
    EXPECT_EQ(RefreshState::shared(machine.platform()).currentInterval.count(), 30);
    for (const auto* line :
         {"⏱ [Timer] 计算刷新频率 (通用逻辑)...", "   - 当前源: coingecko", "   - 检查Key: apiKey_coingecko",
          "   - Key状态: ✅ 有效 (长度:6)", "   👉 结论: 加速模式 -> 30.0秒"}) {
        EXPECT_TRUE(machine.console.printed(line)) << line;
    }
    machine.advance(300s);
    EXPECT_EQ(quotesAsked(), 11);

    machine.preferences.setString("selectedSourceID", "binance");
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(RefreshState::shared(machine.platform()).currentInterval.count(), 60);
    EXPECT_TRUE(machine.console.printed("   - Key状态: ❌ 未设置"));
    EXPECT_TRUE(machine.console.printed("   👉 结论: 默认模式 -> 60.0秒"));
    keystore::KeychainHelper(machine.platform()).save("\xff", "apiKey_binance");
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(RefreshState::shared(machine.platform()).currentInterval.count(), 60) << "no text is no key";
}

TEST_F(RefreshCycleTest, ARejectedKeySlowsDownUntilTheSettingsAreSaved) {
    keystore::KeychainHelper(machine.platform()).save("CG-123", "apiKey_coingecko");
    begin();
    machine.http.answer("gecko.test", "", 403);
    machine.advance(30s);
    EXPECT_EQ(RefreshState::shared(machine.platform()).currentInterval.count(), 60);
    EXPECT_EQ(surface.tooltip, "⚠️ Invalid API Key (Reverted to 60s) @ 03:04:36\nPrices from 03:04:06");
    EXPECT_THAT(shownPrices(), ElementsAre("64000.00")) << "the last good prices stay";
    const int asked = quotesAsked();
    machine.advance(120s + 300ms);
    EXPECT_EQ(quotesAsked(), asked + 2);
    EXPECT_EQ(machine.console.count("🚨 [API] 检测到 Key 失效 (401/403)，触发自动降级！"), 1);
    EXPECT_TRUE(machine.console.printed("🚫 [Timer] API Key 已被标记为无效或错误，强制降级 -> 60.0秒"));

    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 65000));
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(RefreshState::shared(machine.platform()).currentInterval.count(), 30);
    machine.advance(1s);
    EXPECT_THAT(shownPrices(), ElementsAre("65000.00"));
}

TEST_F(RefreshCycleTest, WithNothingToShowTheErrorStandsInTheLine) {
    machine.http.answer("gecko.test", "Throttled", 429);
    begin();
    EXPECT_EQ(surface.line.emptyText, "⚠️ Limit 429");
    // The end of the cool-down brings the prices, long before the next tick would.
    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 64000));
    machine.advance(59s);
    EXPECT_THAT(shownPrices(), IsEmpty());
    machine.advance(1s);
    EXPECT_THAT(shownPrices(), ElementsAre("64000.00"));
}

TEST_F(RefreshCycleTest, ABurstOfRequestsBecomesOneAndEarlyTicksAreDropped) {
    using Scope = StatusBarController::Scope;
    begin();
    machine.advance(10s);
    EXPECT_EQ(quotesAsked(), 1);
    machine.http.latency = 1900ms;
    for (int i = 0; i < 3; ++i) {
        controller->fetchAndDisplayPrice(Urgency::Forced, Scope::Everything);
        machine.advance(9ms);
    }
    EXPECT_EQ(quotesAsked(), 1);
    machine.advance(1ms);
    EXPECT_EQ(quotesAsked(), 2);

    machine.advance(1999ms);
    controller->fetchAndDisplayPrice(Urgency::Timer, Scope::Everything);
    EXPECT_TRUE(machine.console.printed("✋ [System] 请求防抖"));
    machine.advance(1ms);
    for (int i = 0; i < 3; ++i) {
        controller->fetchAndDisplayPrice(Urgency::Timer, Scope::Everything);
        machine.advance(199ms);
    }
    EXPECT_EQ(quotesAsked(), 2);
    machine.advance(1ms);
    EXPECT_EQ(quotesAsked(), 3) << "it counts from the start of the last";

    machine.advance(46s);
    controller->fetchAndDisplayPrice(Urgency::Forced, Scope::Everything);
    machine.advance(2s);
    EXPECT_EQ(machine.console.count("✋ [System] 请求防抖"), 2) << "the timer's tick was dropped";
    EXPECT_EQ(quotesAsked(), 4);
    EXPECT_GT(RefreshState::shared(machine.platform()).nextFetchTime, machine.runLoop.now() + 50s);
}

TEST_F(RefreshCycleTest, OnlyOneFetchIsInFlight) {
    machine.http.latency = 30s;
    begin();
    controller->forceFullUpdate();
    machine.advance(5s);
    EXPECT_EQ(quotesAsked(), 1);
    machine.advance(30s);
    EXPECT_EQ(surface.completed, 1);
    controller->forceFullUpdate();
    machine.advance(1s);
    EXPECT_EQ(quotesAsked(), 2);
}

TEST_F(RefreshCycleTest, AnEmptyListAsksForNothingAndKeepsTheLine) {
    begin();
    save({});
    machine.advance(120s);
    EXPECT_EQ(quotesAsked(), 1);
    EXPECT_THAT(shownPrices(), ElementsAre("64000.00"));
}

TEST_F(RefreshCycleTest, ThePanelGetsTheFirstFiveAndTheLineIsHidden) {
    std::vector<config::Coin> coins;
    for (const auto* id : {"a", "b", "c", "d", "e", "f", "g"}) {
        coins.push_back(test::coin(id, id));
    }
    save(coins);
    showGas(1);
    machine.preferences.setInteger("displayMode", 1);
    machine.http.answer("gecko.test", test::geckoAnswer({"a"}, 1));
    surface.hasProgress = true;
    begin();
    ASSERT_THAT(surface.panels, SizeIs(1));
    coins.resize(5);
    EXPECT_EQ(config::encodeCoins(surface.panels[0].coins), config::encodeCoins(coins));
    EXPECT_EQ(surface.panels[0].gasPrice.value().price, 7);
    EXPECT_EQ(surface.panels[0].nextFetchTime, RefreshState::shared(machine.platform()).nextFetchTime);
    EXPECT_EQ(surface.mode, DisplayMode::Panel);
    EXPECT_EQ(surface.linesShown, 0);
    EXPECT_THAT(surface.progress, IsEmpty());

    EXPECT_EQ(surface.visibilityChecks, 1) << "what follows the presenter decides whether that means anything";

    machine.http.answer("gecko.test", "", 401);
    machine.advance(61s);
    EXPECT_EQ(machine.console.count("🚨 [API]"), 0) << "a rejected key shows only in the line";
    displaySettingsSaved();
    EXPECT_THAT(surface.panels, SizeIs(3));
    EXPECT_EQ(surface.panels.back().gasPrice.value().price, 7);
    controller->forceFullUpdate();
    ASSERT_THAT(surface.panels, SizeIs(4)) << "what is known is shown before what is asked";
    EXPECT_EQ(surface.panels.back().gasPrice.value().price, 7);
    showGas(0);
    machine.notifications.post(config::kDisplaySettingsChanged);
    EXPECT_EQ(surface.panels.back().gasPrice, std::nullopt) << "the other network's";
    for (const auto& panel : surface.panels) {
        EXPECT_THAT(panel.quotes, SizeIs(1)) << "the last good ones stay";
    }
}

TEST_F(RefreshCycleTest, TheDisplayModeChangesWhileTheProgramRunsWithoutAskingAgain) {
    surface.hasProgress = true;
    begin();
    ASSERT_EQ(surface.mode, DisplayMode::Line);
    const auto ticks = surface.progress.size();
    machine.preferences.setInteger("displayMode", 1);
    machine.notifications.post(config::kDisplayModeChanged);
    EXPECT_EQ(surface.mode, DisplayMode::Panel);
    EXPECT_THAT(surface.panels, SizeIs(1));
    EXPECT_TRUE(machine.console.printed("🔄 [System] 模式切换 -> 1"));
    machine.advance(10s);
    EXPECT_EQ(surface.progress.size(), ticks) << "a countdown that nobody sees";

    const int lines = surface.linesShown;
    machine.preferences.setInteger("displayMode", 2);
    machine.notifications.post(config::kDisplayModeChanged);
    EXPECT_EQ(surface.mode, DisplayMode::Line) << "only 1 is the panel";
    EXPECT_TRUE(machine.console.printed("🔄 [System] 模式切换 -> 2"));
    EXPECT_EQ(surface.linesShown, lines + 1);
    machine.advance(1s);
    EXPECT_GT(surface.progress.size(), ticks);
    EXPECT_EQ(quotesAsked(), 1);
}

TEST_F(RefreshCycleTest, AModeChangeBeforeTheFirstQuotesAsksForThem) {
    make();
    machine.preferences.setInteger("displayMode", 1);
    machine.notifications.post(config::kDisplayModeChanged);
    machine.advance(1ms);
    showGas(1);
    displaySettingsSaved();
    EXPECT_EQ(quotesAsked(), 1);
    EXPECT_THAT(surface.panels.back().quotes, SizeIs(1));
    EXPECT_EQ(surface.panels.back().gasPrice.value().price, 7);
}

TEST_F(RefreshCycleTest, TheLineIsLookedForAfterEachRefreshTickAndChangeOfWindows) {
    begin();  // it leaves off a second after the first refresh
    EXPECT_EQ(surface.visibilityChecks, 1);
    machine.advance(59s + 600ms);  // the tick comes 60 s after that refresh
    EXPECT_EQ(surface.visibilityChecks, 1);
    machine.advance(200ms);
    EXPECT_EQ(surface.visibilityChecks, 2) << "half a second after the fetch";
    machine.advance(250ms);
    EXPECT_EQ(surface.visibilityChecks, 3) << "a second after the tick";
    machine.notifications.post(platform::kActiveApplicationChanged);
    machine.advance(1s + 50ms);
    EXPECT_EQ(surface.visibilityChecks, 4) << "and after another window has come to the front";
}

TEST_F(RefreshCycleTest, ThePresenterMayEndWithAFetchInFlightOrInItsOwnCallback) {
    begin();
    controller->forceFullUpdate();
    machine.advance(12ms);
    controller.reset();
    machine.advance(120s);
    EXPECT_EQ(surface.completed, 1);

    make();
    controller->start();
    surface.onCompleted = [this] { controller.reset(); };
    machine.advance(10s);
    EXPECT_EQ(surface.completed, 2);
    EXPECT_EQ(machine.runLoop.pending(), 0U) << "it leaves nothing behind";
}

TEST_F(RefreshCycleTest, TheCountdownRunsWithTheIntervalAndOnlyWhereItIsSeen) {
    begin();
    machine.advance(10s);
    EXPECT_THAT(surface.progress, IsEmpty());
    surface.hasProgress = true;
    controller->forceFullUpdate();
    machine.advance(30s);
    EXPECT_THAT(surface.progress, SizeIs(300));
    EXPECT_NEAR(surface.progress.back(), 0.5, 1e-9);
    machine.advance(29s);
    EXPECT_NEAR(surface.progress.back(), 59.0 / 60, 1e-9);
    machine.advance(2s);
    EXPECT_NEAR(surface.progress.back(), 1.0 / 60, 1e-9);

    surface.unchangedFor = platform::Seconds(5);
    const auto before = surface.progress.size();
    machine.advance(20s);
    EXPECT_LE(surface.progress.size() - before, 5U) << "what looks the same is not drawn again";
}

TEST_F(RefreshCycleTest, ACountdownThatNothingShowsHasNoTimerUntilALineHasOneAgain) {
    surface.hasProgress = true;
    begin();
    surface.hasProgress = false;  // the line is empty
    machine.advance(1s);
    const auto timers = machine.runLoop.pending();
    const auto shown = surface.progress.size();
    machine.advance(20s);
    EXPECT_EQ(surface.progress.size(), shown);
    surface.hasProgress = true;
    machine.advance(20s);
    EXPECT_EQ(surface.progress.size(), shown) << "nothing wakes up to look";
    EXPECT_EQ(machine.runLoop.pending(), timers);

    controller->redisplayFromCache();
    EXPECT_EQ(surface.progress.size(), shown + 1) << "with the line, so that no old one is seen beside it";
    EXPECT_EQ(machine.runLoop.pending(), timers + 1);
    machine.advance(1s);
    EXPECT_EQ(surface.progress.size(), shown + 11);
}

}  // namespace glintar::presenter
