// The network fee in the refresh cycle, and settings that another process has written.

#include "presenter/RefreshCycle.h"
#include "presenter/RefreshState.h"
#include "presenter/SettingsWatch.h"

#include <gmock/gmock.h>

namespace glintar::presenter {
namespace {

using testing::SizeIs;

using FeeCycleTest = RefreshCycleTest;

TEST_F(FeeCycleTest, EthereumIsPricedBesideTheCoinsWhenTheFeeNeedsIt) {
    struct Row {
        std::string source, coinId;
        int gasSource;
        std::string asked;  ///< the queries for quotes, one after the other
    };
    for (const auto& [source, coinId, gasSource, expected] : {
             Row{"coingecko", "bitcoin", 0, "?ids=bitcoin,ethereum"},
             Row{"binance_us", "bitcoin", 0, "?symbol=XUSDT?symbol=ETHUSDT"},
             Row{"binance", "bitcoin", 0, "?symbol=XUSDT?symbol=ETHUSDT"},
             Row{"gate", "bitcoin", 0, "?pair=X_USDT&id=bitcoin?pair=ETH_USDT&id=ETH"},
             Row{"coingecko", "ETHUSDT", 0, "?ids=ETHUSDT"},
             Row{"gate", "eth_usdt", 0, "?pair=X_USDT&id=eth_usdt"},
             Row{"gate", "eth", 0, "?pair=X_USDT&id=eth"},
             Row{"coingecko", "bitcoin", 1, "?ids=bitcoin"},
             Row{"coingecko", "bitcoin", 2, "?ids=bitcoin"},
         }) {
        machine.registry.clear();
        machine.http.requests.clear();
        showGas(gasSource);
        machine.preferences.setString("selectedSourceID", source);
        save({test::coin("X", coinId)});
        begin();
        std::string asked;
        for (const auto& request : machine.http.requests) {
            asked += request.url.substr(std::min(request.url.find('?'), request.url.size()));
        }
        EXPECT_EQ(asked, expected) << source << gasSource;
    }
}

TEST_F(FeeCycleTest, TheFeeStandsBesideTheCoinsWithItsCostInDollars) {
    showGas(0);
    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin", "ethereum"}, 2500));
    begin();
    EXPECT_THAT(shownPrices(), SizeIs(1)) << "the coin that only prices the fee is not shown";
    EXPECT_EQ(surface.line.gas.value().text, "12G ($0.630)");
    EXPECT_TRUE(machine.console.printed("⛽️ [Gas] Injecting phantom coin for pricing: ethereum"));
    machine.http.answer("eth.test", "{}");
    controller->forceFullUpdate();
    EXPECT_FALSE(surface.line.gas.value().arrival.isOld);
    machine.advance(1s);
    EXPECT_TRUE(surface.line.gas.value().arrival.isOld) << "a fee that could not be had stays";

    save({test::coin("SOL", "solana")});
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(surface.line.emptyText, "Loading...") << "whatever is known of the coin that prices the fee";
    EXPECT_FALSE(surface.line.gas);
}

TEST_F(FeeCycleTest, ChangingTheFeeSettingsCostsOneFeeRequestAndNoQuotes) {
    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin", "ethereum"}, 2500));
    begin();
    showGas(0);
    surface.dashboard.clear();
    const auto next = RefreshState::shared(machine.platform()).nextFetchTime;
    displaySettingsSaved();
    EXPECT_EQ(RefreshState::shared(machine.platform()).nextFetchTime, next) << "the timer goes on";
    EXPECT_EQ(surface.dashboard, "Arbitrage Dashboard");
    EXPECT_TRUE(machine.console.printed("⛽️ Gas Fee Enabled -> Fetching"));
    EXPECT_TRUE(machine.console.printed("✅ [Fetch] Cache Hit (All coins found). Skipping network request."));
    EXPECT_EQ(quotesAsked(), 1);
    EXPECT_EQ(surface.line.gas.value().text, "12G ($0.630)");

    showGas(1);
    machine.notifications.post(config::kDisplaySettingsChanged);
    EXPECT_FALSE(surface.line.gas) << "the other network's fee goes at once";
    machine.advance(1s);
    EXPECT_TRUE(machine.console.printed("⛽️ Gas Source Changed -> Cleared Cache & Fetching"));
    EXPECT_EQ(surface.line.gas.value().text, "7 sat");
    EXPECT_EQ(quotesAsked(), 1);

    machine.preferences.setBoolean("showGasFee", false);
    displaySettingsSaved();
    EXPECT_TRUE(machine.console.printed("⛽️ Gas Fee Disabled -> Refreshing UI"));
    EXPECT_FALSE(surface.line.gas);
    EXPECT_EQ(machine.http.asked("eth.test") + machine.http.asked("btc.test"), 2);
    const int shown = surface.linesShown;
    displaySettingsSaved();
    EXPECT_EQ(surface.linesShown, shown + 1) << "any other setting just shows the line anew";
}

TEST_F(FeeCycleTest, AFeeThatNeedsAnotherPriceAsksForTheQuotesToo) {
    begin();
    showGas(0);
    displaySettingsSaved();
    EXPECT_TRUE(machine.console.printed("⚠️ [Fetch] Cache Miss. Missing: [\"ethereum\"]. Forcing Network."));
    EXPECT_EQ(quotesAsked(), 2);

    machine.preferences.setBoolean("showGasFee", false);
    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin", "ethereum"}, 2500));
    displaySettingsSaved();
    machine.advance(60s);
    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 2500));
    machine.advance(60s);
    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin", "ethereum"}, 5000));
    showGas(0);
    displaySettingsSaved();
    EXPECT_EQ(surface.line.gas.value().text, "12G ($1.260)") << "not by the price of long ago";
}

TEST_F(FeeCycleTest, AFeeSelectedDuringAFetchIsAskedForAtOnceAndTheOtherIsNotShown) {
    for (const bool wasShown : {true, false}) {
        machine.preferences.setInteger("gasSource", 0);
        machine.preferences.setBoolean("showGasFee", wasShown);
        begin();
        machine.http.latency = 5s;
        machine.advance(60s);  // a refresh is in flight
        showGas(1);
        machine.notifications.post(config::kDisplaySettingsChanged);
        machine.advance(5s);
        EXPECT_FALSE(surface.line.gas) << wasShown;
        machine.advance(6s);
        ASSERT_TRUE(surface.line.gas) << wasShown;
        EXPECT_EQ(surface.line.gas->text, "7 sat");
        machine.http.latency = 5ms;
    }
}

struct Written {
    std::string what;
    void (*write)(platform::VirtualPreferences&);
    std::vector<std::string> told;
};

class SettingsWatchTest : public testing::Test {
protected:
    SettingsWatchTest() {
        for (const auto name : {config::kDisplaySettingsChanged, config::kDisplayModeChanged, config::kCoinsUpdated}) {
            observations.push_back(machine.notifications.observe(name, [this, name] { told.emplace_back(name); }));
        }
    }

    platform::VirtualPlatform machine;
    std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> observations;
    std::vector<std::string> told;
};

TEST_F(SettingsWatchTest, CountAsIfTheyHadBeenSavedHere) {
    const SettingsWatch watch(machine.platform());
    const std::string display(config::kDisplaySettingsChanged), mode(config::kDisplayModeChanged);
    const std::string coins(config::kCoinsUpdated);
    for (const auto& [what, write, expected] : {
             Written{"nothing", [](auto&) {}, {}},
             Written{"fee", [](auto& p) { p.setBoolean("showGasFee", true); }, {display}},
             Written{"network", [](auto& p) { p.setInteger("gasSource", 1); }, {display}},
             Written{"change", [](auto& p) { p.setBoolean("showChange24h", true); }, {display}},
             Written{"range", [](auto& p) { p.setBoolean("showHighLow24h", true); }, {display}},
             Written{"sparkline", [](auto& p) { p.setBoolean("showSparkline", true); }, {display}},
             Written{"plate", [](auto& p) { p.setBoolean("floatTransparent", true); }, {display}},
             Written{"distance", [](auto& p) { p.setReal("floatOffset", 40); }, {display}},
             Written{"mode", [](auto& p) { p.setInteger("displayMode", 1); }, {mode}},
             Written{"source", [](auto& p) { p.setString("selectedSourceID", "binance"); }, {coins}},
             Written{"coins", [](auto& p) { test::saveCoins(p, {test::coin("ETH", "ethereum")}); }, {coins}},
             Written{"all",
                     [](auto& p) {
                         p.setString("selectedSourceID", "gate");
                         p.setInteger("displayMode", 0);
                         p.setReal("floatOffset", 50);
                     },
                     {display, mode, coins}},
         }) {
        told.clear();
        write(machine.preferences);
        machine.preferences.onExternalChange();
        EXPECT_EQ(told, expected) << what;
        machine.preferences.onExternalChange();
        EXPECT_EQ(told, expected) << what << ": once is enough";
    }
}

TEST_F(SettingsWatchTest, AKeyThatAppearsInTheKeyRingCountsToo) {
    {
        const SettingsWatch watch(machine.platform());
        machine.secrets.onChange();
        EXPECT_THAT(told, testing::ElementsAre(config::kCoinsUpdated));
    }
    EXPECT_FALSE(machine.secrets.onChange) << "nobody is called who is gone";
    EXPECT_FALSE(machine.preferences.onExternalChange);
}

}  // namespace
}  // namespace glintar::presenter
