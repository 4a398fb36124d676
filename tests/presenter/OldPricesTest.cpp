// Prices that the last refresh did not bring stay, and look it; and what the cycle makes of a machine that sleeps and
// of a network that comes and goes.

#include "keystore/KeychainHelper.h"
#include "platform/DesktopEvents.h"
#include "presenter/LineText.h"
#include "presenter/RefreshCycle.h"
#include "presenter/RefreshState.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace glintar::presenter {
namespace {

constexpr auto kFee = R"({"halfHourFee":7})";

class OldPricesTest : public RefreshCycleTest {
protected:
    OldPricesTest() {
        save({test::coin("BTC", "bitcoin"), test::coin("ETH", "ethereum")});
        machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin", "ethereum"}, 64000));
        showGas(1);
    }
    std::string text() const { return plainText(surface.line); }
    void saved() {
        machine.notifications.post(config::kCoinsUpdated);
        machine.advance(1s);
    }
};

struct AgeCase {
    std::string quotes;
    int status;
    const char* fee;
    const char* text;
    const char* tooltip;
};

const auto both = test::geckoAnswer({"bitcoin", "ethereum"}, 65000);

class AnswerAgeTest : public OldPricesTest, public testing::WithParamInterface<AgeCase> {};

TEST_P(AnswerAgeTest, WhatAnAnswerLacksIsOldUntilItComesAgain) {
    const auto& [quotes, status, fee, expected, tooltip] = GetParam();
    begin();
    machine.http.answer("gecko.test", quotes, status);
    machine.http.answer("btc.test", fee);
    machine.advance(60s);
    EXPECT_EQ(text(), expected);
    EXPECT_EQ(surface.tooltip, tooltip);
    EXPECT_EQ(surface.line.newest().value().isOld, surface.line.areAllCoinsOld());

    machine.advance(10s);
    controller->redisplayFromCache();
    controller->onDisplaySettingsChanged();
    EXPECT_EQ(text(), expected) << "drawn again";
    EXPECT_EQ(surface.tooltip, tooltip) << "drawn again";

    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin", "ethereum"}, 66000));
    machine.http.answer("btc.test", kFee);
    machine.advance(50s);
    EXPECT_EQ(text(), "BTC 66000.00 | ETH 66000.00 | ₿ 7 sat");
    EXPECT_EQ(surface.tooltip, "Last Updated: 03:06:06");
}

INSTANTIATE_TEST_SUITE_P(
    OldPrices, AnswerAgeTest,
    testing::Values(AgeCase{test::geckoAnswer({"bitcoin"}, 65000), 200, kFee, "BTC 65000.00 | ⚠️ ETH 64000.00 | ₿ 7 sat",
                            "Last Updated: 03:05:06\nPrices from 03:04:06"},
                    AgeCase{both, 200, "<html>", "BTC 65000.00 | ETH 65000.00 | ⚠️ ₿ 7 sat",
                            "Last Updated: 03:05:06\nPrices from 03:04:06"},
                    AgeCase{"<html>", 200, kFee, "⚠️ No Price Data | BTC 64000.00 | ETH 64000.00 | ₿ 7 sat",
                            "⚠️ No Price Data @ 03:05:06\nPrices from 03:04:06"},
                    AgeCase{R"([{"id":"bitcoin","current_price":null}])", 200, "{}",
                            "⚠️ No Price Data | BTC 64000.00 | ETH 64000.00 | ₿ 7 sat",
                            "⚠️ No Price Data @ 03:05:06\nPrices from 03:04:06"},
                    AgeCase{both, 403, kFee, "⚠️ Error | BTC 64000.00 | ETH 64000.00 | ₿ 7 sat",
                            "Error: HTTP 403 @ 03:05:06\nPrices from 03:04:06"}));

TEST_F(OldPricesTest, AnotherDaySaysWhich) {
    begin();
    machine.http.fail("gecko.test", {});
    machine.advance(24h);
    EXPECT_THAT(surface.tooltip, testing::HasSubstr("\nPrices from 2026-01-02 03:04:06"));
}

TEST_F(OldPricesTest, AChangeDuringAFetchIsFollowedByAnotherAndNeverShowsAWrongPair) {
    begin();
    machine.http.answer("binance.test", R"({"lastPrice":"1.5"})");
    const int asked = quotesAsked();
    machine.http.latency = 5s;
    machine.advance(60s);  // the fetch is under way
    machine.preferences.setString("selectedSourceID", "binance");
    save({test::coin("SOL", "solana")});
    saved();
    EXPECT_EQ(text(), "Loading...") << "nothing of the old source";
    machine.http.latency = 5ms;
    machine.advance(5s);
    EXPECT_EQ(quotesAsked(), asked + 1);
    EXPECT_EQ(text(), "SOL 1.50 | ₿ 7 sat") << "asked for at once, and the late answer is dropped";

    save({test::coin("SOL", "solana"), test::coin("XRP", "ripple")});
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(surface.tooltip.find("No price"), std::string::npos) << "nobody has asked yet: " << surface.tooltip;
    machine.advance(1s);

    save({});
    machine.preferences.setBoolean("showGasFee", false);
    saved();
    EXPECT_TRUE(surface.line.isEmpty());
    save({test::coin("SOL", "solana")});
    machine.http.latency = 5s;
    saved();
    EXPECT_EQ(text(), "Loading...") << "a coin that was removed does not come back with its old price";
}

TEST_F(OldPricesTest, AFeeFromTheCacheIsNoSuccessOfTheQuotes) {
    begin();
    machine.http.fail("gecko.test", {});
    machine.advance(60s);
    machine.http.answer("gecko.test", both);
    showGas(0);
    displaySettingsSaved();
    EXPECT_EQ(text(), "⚠️ Net Error | BTC 64000.00 | ETH 64000.00 | ⛽ 12G ($16.128)");
    machine.notifications.post(platform::kNetworkCameBack);
    machine.advance(2s);
    EXPECT_EQ(text(), "BTC 65000.00 | ETH 65000.00 | ⛽ 12G ($16.380)");
}

TEST_F(OldPricesTest, ARefusedKeyIsNoticedBesideThePanelToo) {
    keystore::KeychainHelper(machine.platform()).save("CG-123", "apiKey_coingecko");
    machine.preferences.setInteger("displayMode", 1);
    begin();
    machine.http.answer("gecko.test", "", 401);
    machine.advance(30s);
    EXPECT_EQ(RefreshState::shared(machine.platform()).currentInterval.count(), 60);
    EXPECT_TRUE(surface.panels.back().quotes.at("bitcoin").arrival.isOld);
}

class SleepAndNetworkTest : public RefreshCycleTest {
protected:
    void wake() { machine.notifications.post(platform::kMachineResumed); }
    void networkBack() { machine.notifications.post(platform::kNetworkCameBack); }
    void breakNetwork() { machine.http.fail("gecko.test", {platform::HttpError::Kind::Connection, "no way"}); }
    void mendNetwork() { machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 65000)); }
};

TEST_F(SleepAndNetworkTest, ARefreshThatFellDueDuringSleepComesAtOnceAndOnce) {
    begin();
    machine.advance(10s);
    machine.runLoop.sleep(30s);
    wake();
    machine.advance(2s);
    EXPECT_EQ(quotesAsked(), 1) << "nothing was due";

    machine.runLoop.sleep(3h);
    wake();
    wake();  // two sources may tell of it
    machine.advance(2s);
    EXPECT_EQ(quotesAsked(), 2);
    machine.advance(57s);
    EXPECT_EQ(quotesAsked(), 2) << "it stands for the one that was due";
    machine.advance(2s);
    EXPECT_EQ(quotesAsked(), 3);
}

TEST_F(SleepAndNetworkTest, AnErrorIsGoneSoonAfterTheNetworkIsBack) {
    begin();
    networkBack();
    machine.advance(10s);
    EXPECT_EQ(quotesAsked(), 1) << "a line without an error needs no request";

    breakNetwork();
    machine.advance(51s);
    ASSERT_EQ(surface.line.error, "Network Error");
    const int asked = quotesAsked();
    mendNetwork();
    networkBack();
    machine.advance(2s);
    EXPECT_THAT(shownPrices(), testing::ElementsAre("65000.00"));
    EXPECT_EQ(quotesAsked(), asked + 1);
    networkBack();
    machine.advance(50s);
    EXPECT_EQ(quotesAsked(), asked + 1);
}

TEST_F(SleepAndNetworkTest, ANetworkThatFlapsCostsARequestEveryTwoSecondsAtMost) {
    breakNetwork();
    begin();
    const int asked = quotesAsked();
    for (int i = 0; i < 100; ++i) {
        networkBack();
        machine.advance(100ms);
    }
    EXPECT_LE(quotesAsked(), asked + 6);
    EXPECT_GE(quotesAsked(), asked + 3);
}

TEST_F(SleepAndNetworkTest, AnAnswerFromBeforeTheSleepIsNotTheLastWord) {
    begin();
    machine.http.latency = 1s;
    machine.advance(60s);  // the next fetch is under way
    const int asked = quotesAsked();
    machine.runLoop.sleep(1h);
    wake();
    mendNetwork();
    machine.advance(4s);
    EXPECT_EQ(quotesAsked(), asked + 1);
    EXPECT_THAT(shownPrices(), testing::ElementsAre("65000.00"));
    machine.advance(50s);
    EXPECT_EQ(quotesAsked(), asked + 1);
}

TEST_F(SleepAndNetworkTest, AFetchThatSleepCutInTwoIsMadeAgainWithinTwoSeconds) {
    showGas(1);
    begin();
    machine.http.latency = 1h;  // a dead connection says nothing
    machine.advance(60s);       // the next fetch is under way
    const int asked = quotesAsked();
    machine.runLoop.sleep(1h);
    machine.http.latency = 10ms;
    mendNetwork();
    const int lines = surface.linesShown;
    wake();
    machine.advance(2s);
    EXPECT_EQ(surface.linesShown, lines + 1) << "an error of the program's own making is not shown";
    EXPECT_EQ(quotesAsked(), asked + 1);
    EXPECT_THAT(shownPrices(), testing::ElementsAre("65000.00"));
    EXPECT_TRUE(surface.line.gas);
}

TEST_F(SleepAndNetworkTest, ConnectionsFromBeforeANetworkChangeAreNotUsedAgain) {
    begin();
    networkBack();
    EXPECT_EQ(machine.http.drops, 1);
    machine.http.latency = 5s;
    machine.advance(60s);
    networkBack();
    EXPECT_EQ(machine.http.drops, 1) << "a fetch that may well succeed is left alone";

    machine.http.latency = 1h;
    breakNetwork();
    machine.advance(5s);
    machine.http.latencies = {10ms};
    machine.advance(60s);  // it has failed
    machine.advance(60s);  // the next one hangs
    mendNetwork();
    machine.http.latency = 10ms;
    networkBack();
    EXPECT_EQ(machine.http.drops, 2);
    machine.advance(2s);
    EXPECT_THAT(shownPrices(), testing::ElementsAre("65000.00"));
}

}  // namespace
}  // namespace glintar::presenter
