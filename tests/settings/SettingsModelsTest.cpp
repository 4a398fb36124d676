// The coins, the display and the maintenance of the settings, as their user meets them.

#include "config/Settings.h"
#include "platform/virtual/VirtualPlatform.h"
#include "platform/virtual/VirtualWorkspace.h"
#include "settings/settingsViewModel.h"
#include "support/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace glintar::settings {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kCatalogue =
    R"([{"id":"ethene","symbol":"ethe","name":"E"},{"id":"bitcoin","symbol":"btc","name":"Bitcoin"},
  {"id":"ethereum","symbol":"eth","name":"Ethereum"},{"id":"fake","symbol":"BTC","name":"Ethernity of Bits"},
  {"id":"x","symbol":"x","name":"İstanbul"}])";

class SettingsModelsTest : public testing::Test {
protected:
    SettingsModelsTest() {
        test::ship(machine);
        machine.files.contents["/bundle/coingecko_coins_list.json"] = kCatalogue;
        for (const auto name : {config::kDisplaySettingsChanged, config::kDisplayModeChanged, config::kCoinsUpdated}) {
            observations.push_back(machine.notifications.observe(name, [this, name] { told.emplace_back(name); }));
        }
    }

    std::string add(std::string name, std::string_view price = "") {
        coins.setName(std::move(name));
        coins.setRefPrice(price);
        coins.addCoin();
        return coins.errorMessage.value_or("");
    }
    std::vector<std::string> saved() {
        std::vector<std::string> rows;
        for (const auto& coin : config::loadSavedCoins(machine.platform())) {
            rows.push_back(coinsSettingsViewModel::rowText(coin) +
                           coinsSettingsViewModel::badgeText(coin).value_or(""));
        }
        return rows;
    }

    platform::VirtualPlatform machine;
    platform::VirtualLoginItem loginItem;
    platform::VirtualWorkspace workspace;
    std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> observations;
    std::vector<std::string> told;
    int ends = 0;
    settingsViewModel model{machine.platform(), {loginItem, workspace, {}, {}, [this] { ++ends; }}, "coins"};
    coinsSettingsViewModel& coins = model.coins;
};

TEST_F(SettingsModelsTest, SuggestionsBeginWithWhatIsTypedShortestSymbolFirst) {
    for (const auto& [typed, suggestions] : std::vector<std::pair<std::string, std::vector<std::string>>>{
             {"BTC ", {"BTC (bitcoin)", "BTC (fake)"}},
             {"\teth", {"ETH (ethereum)", "BTC (fake)", "ETHE (ethene)"}},
             {"  ", {}},
             {"btc\n", {}},
             {"İST", {"X (x)"}},
             {std::string(10'000, 'e'), {}}}) {
        coins.setName(typed);
        EXPECT_EQ(coins.filteredCoins, suggestions) << typed;
    }
    coins.selectSuggestion("BTC (fake)");
    EXPECT_THAT(coins.filteredCoins, IsEmpty());
    std::string many = "[";
    for (int i = 0; i < 25; ++i) {
        many += R"({"id":"a","symbol":"a","name":"a"},)";
    }
    many.back() = ']';
    machine.files.contents["/bundle/coingecko_coins_list.json"] = many;
    coinsSettingsViewModel other(machine.platform());
    other.setName("A");
    EXPECT_EQ(other.filteredCoins.size(), 20U);
}

TEST_F(SettingsModelsTest, WhatIsTypedBecomesACoinOrSaysWhyNot) {
    coins.loadCoins();
    const std::string unknown = "Crypto coin not found, please choose from the list.";
    struct Row {
        std::string typed, price, error, row;
    };
    for (const auto& [typed, price, error, row] : {
             Row{" btc ", "98000", "", "BTC (bitcoin)Ref: 98000.00"},
             Row{"ETHEREUM", "1.2.3", "", "ETH (ethereum)"},
             Row{"x (y) (z)", "12a.5", "", "x (y) (z)Ref: 12.50"},
             Row{"(BITCOIN)", ".", "", " (BITCOIN)"},
             Row{"abc)(", "", unknown, ""},
             Row{"abc ()", "", unknown, ""},
             Row{"nothing", "", unknown, ""},
             Row{"a (bitcoin)", "", "This crypto coin is already on the list.", ""},
         }) {
        told.clear();
        const auto before = coins.coins.size();
        EXPECT_EQ(add(typed, price), error);
        EXPECT_EQ(coins.coins.size() - before, row.empty() ? 0U : 1U) << typed;
        EXPECT_EQ(told.size(), row.empty() ? 0U : 1U) << typed;
        EXPECT_EQ(coins.newCoinDisplayName, row.empty() ? typed : "");
        if (!row.empty()) {
            EXPECT_EQ(saved().back(), row);
        }
    }
    coins.errorMessage.reset();
    EXPECT_TRUE(coins.canAddCoin);
    add("ethe");
    EXPECT_FALSE(coins.canAddCoin);
    EXPECT_EQ(coins.limitText(), "You have reached the limit of 5 coins.");
    coins.removeCoins({0, 2});
    coins.removeCoin(coins.coins.at(1).id);
    coins.removeCoin("nobody");
    EXPECT_THAT(saved(), ElementsAre("ETH (ethereum)", "ETHE (ethene)"));
    EXPECT_TRUE(coins.canAddCoin);
}

TEST_F(SettingsModelsTest, AListWrittenElsewhereIsShownAndNothingTypedIsLost) {
    coins.loadCoins();
    coins.setName("eth");
    coins.setRefPrice("7");
    test::saveCoins(machine.preferences, {test::coin("A", "a"), test::coin("B", "b")});
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(coins.coins.size(), 2U);
    EXPECT_EQ(coins.newCoinDisplayName + coins.newCoinRefPrice, "eth7");
    coins.addCoin();
    EXPECT_THAT(saved(), ElementsAre("A (a)", "B (b)", "ETH (ethereum)Ref: 7.00"));
    machine.preferences.isWritable = false;
    EXPECT_THAT(add("btc"), testing::HasSubstr("not kept"));
    EXPECT_EQ(coins.newCoinDisplayName, "btc");
    EXPECT_EQ(coins.coins.size(), 3U);
    machine.preferences.isWritable = true;
    machine.preferences.setData(config::kSavedCoinsKey, "damaged");
    coins.loadCoins();
    EXPECT_EQ(coins.coins.size(), 3U);
}

TEST_F(SettingsModelsTest, DisplaySettingsAreSavedAnnouncedOnceAndReadAgain) {
    auto& display = model.display();
    display.reload();
    machine.advance(1ms);
    EXPECT_EQ(display.floatOffset, 16);
    EXPECT_TRUE(display.isSparklineSupported);
    display.displayMode = 1;
    display.floatOffset = 25;
    display.saveDisplaySettings();
    EXPECT_THAT(told, ElementsAre(config::kDisplaySettingsChanged, config::kDisplayModeChanged));
    EXPECT_EQ(machine.preferences.integer("displayMode"), 1);
    EXPECT_EQ(display.modeText(), "The price follows your mouse cursor.");
    machine.preferences.setReal("floatOffset", 7);
    machine.preferences.setInteger("displayMode", (1LL << 32) + 1);
    machine.preferences.setString("selectedSourceID", "binance");
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(display.floatOffset, 25) << "read at a later turn";
    machine.advance(1ms);
    EXPECT_EQ(display.floatOffset, 7);
    EXPECT_EQ(display.modeText(), "The price shows in status bar.");
    EXPECT_FALSE(display.isSparklineSupported);

    loginItem.failure = "Read-only file system";
    display.setLaunchAtLogin(true);
    EXPECT_FALSE(display.launchAtLogin);
    EXPECT_EQ(display.loginError, loginItem.failure);
    EXPECT_TRUE(machine.console.printed("Failed to toggle launch at login: Read-only file system"));
    loginItem.isThere = true;  // switched on by the desktop's own settings
    display.reload();
    EXPECT_TRUE(display.launchAtLogin);
}

TEST_F(SettingsModelsTest, TheResetRemovesWhatWasFetchedAndKeepsTheUsersChoices) {
    test::saveCoins(machine.preferences, {test::coin("A", "a")});
    for (const auto* path : {"/home/u/data/remote_api_endpoints.json", "/home/u/documents/coingecko_coins_list.json",
                             "/home/u/cache/CoinIcons/a.png"}) {
        machine.files.contents[path] = "x";
    }
    machine.files.folders.insert("/home/u/cache/CoinIcons");
    machine.preferences.setInteger("coin_list_version", 4);
    machine.preferences.setInteger("saved_api_config_version", 5);
    machine.files.writeFailure = "Read-only file system";
    model.about.cleanCacheAndRestart();
    EXPECT_EQ(ends, 1) << "even so";
    EXPECT_EQ(machine.console.count("已删除"), 0);
    machine.files.writeFailure.clear();
    model.about.cleanCacheAndRestart();
    EXPECT_EQ(machine.console.count("已删除"), 3);
    EXPECT_EQ(machine.files.contents.size(), 2U) << "what was shipped";
    EXPECT_EQ(machine.preferences.integer("coin_list_version"), 0);
    EXPECT_EQ(machine.preferences.integer("saved_api_config_version"), 0);
    EXPECT_THAT(saved(), ElementsAre("A (a)"));
    EXPECT_EQ(workspace.relaunches, 2);
}

TEST_F(SettingsModelsTest, TheDisplayTabCanBeAskedFor) {
    machine.notifications.post(kSwitchToDisplayTab);
    EXPECT_EQ(model.selectedTab, "displaymode");
}

}  // namespace
}  // namespace glintar::settings
