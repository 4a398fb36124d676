// The source and its key: no key lands with another source, goes out half typed, or is lost to a slow key ring.

#include "config/Coin.h"
#include "platform/virtual/VirtualPlatform.h"
#include "settings/APISettingsViewModel.h"
#include "support/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace glintar::settings {
namespace {

using namespace std::chrono_literals;
using platform::SecretStatus;
using testing::HasSubstr;

class KeySettingsTest : public testing::Test {
protected:
    KeySettingsTest() {
        test::ship(machine);
        machine.secrets.add("apiKey_coingecko", "GlintarUser", "one");
        updates = machine.notifications.observe(config::kCoinsUpdated, [this] { ++told; });
        model.emplace(machine.platform());
    }
    void select(std::string_view id) { model->selectSource(*model->config->source(id)); }
    std::string kept(const std::string& id) { return machine.secrets.find("apiKey_" + id, "GlintarUser").bytes; }

    platform::VirtualPlatform machine;
    std::unique_ptr<platform::NotificationCenter::Observation> updates;
    int told = 0;
    std::optional<APISettingsViewModel> model;
};

TEST_F(KeySettingsTest, AKeyIsStoredAtEachChangeAndAnnouncedAfterASecondWithoutTyping) {
    EXPECT_EQ(model->inputApiKey, "one");
    for (const auto* text : {"t", "tw", " two"}) {
        model->setApiKey(text);
        EXPECT_EQ(kept("coingecko"), text);
        machine.advance(900ms);
        EXPECT_EQ(keystore::KeychainHelper(machine.platform()).apiKeyOf("coingecko"), "one") << "for whoever asks now";
    }
    EXPECT_THAT(model->keyNote(), HasSubstr("cannot be sent"));
    EXPECT_EQ(told, 0);
    machine.advance(100ms);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(keystore::KeychainHelper(machine.platform()).apiKeyOf("coingecko"), " two");
    EXPECT_EQ(machine.console.count("🔒 API Key 已安全保存到 Keychain: apiKey_coingecko"), 3);
    EXPECT_EQ(machine.console.count("two"), 0);
    model->setApiKey("");
    EXPECT_EQ(kept("coingecko"), "");
    EXPECT_TRUE(machine.console.printed("🗑️ API Key 已从 Keychain 移除: apiKey_coingecko"));
}

TEST_F(KeySettingsTest, SwitchingSourcesCarriesNoKeyAlong) {
    model->setApiKey("typed");
    select("binance");
    EXPECT_EQ(told, 1);
    EXPECT_EQ(model->inputApiKey, "");
    EXPECT_EQ(machine.preferences.string("selectedSourceID"), "binance");
    machine.advance(2s);
    EXPECT_EQ(told, 1) << "what was typed has been announced";
    EXPECT_EQ(kept("binance"), "");
    select("coingecko");
    EXPECT_EQ(model->inputApiKey, "typed");
    EXPECT_EQ(kept("coingecko"), "typed");
}

TEST_F(KeySettingsTest, AKeyRingThatAnswersLateLosesAndMixesUpNothing) {
    select("binance");
    machine.secrets.failure = SecretStatus::Pending;
    select("coingecko");
    EXPECT_EQ(model->inputApiKey, "");
    EXPECT_THAT(model->keyNote(), HasSubstr("Waiting"));
    machine.secrets.failure.reset();
    EXPECT_EQ(kept("coingecko"), "one") << "an empty field is no order to remove it";
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(model->inputApiKey, "one");

    machine.secrets.failure = SecretStatus::Pending;
    select("binance");
    select("coingecko");
    select("gate");
    machine.secrets.failure.reset();
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(model->inputApiKey, "");
    EXPECT_EQ(kept("coingecko") + kept("binance") + kept("gate"), "one");
}

TEST_F(KeySettingsTest, WhatTheKeyRingWillNotKeepIsSaidAndStaysTyped) {
    for (const auto& [status, words] :
         std::vector<std::pair<SecretStatus, std::string>>{{SecretStatus::Locked, "is locked, so this key is not kept"},
                                                           {SecretStatus::Unavailable, "no key ring"},
                                                           {SecretStatus::NotFound, "did not keep"},
                                                           {SecretStatus::Failed, "refused"}}) {
        machine.secrets.failure.reset();
        model->setApiKey("typed");
        EXPECT_EQ(model->keyNote(), "");
        machine.secrets.failure = status;
        machine.advance(1s);
        EXPECT_THAT(model->keyNote(), HasSubstr(words));
        EXPECT_EQ(model->inputApiKey, "typed");
    }
    machine.secrets.failure.reset();
    model->setApiKey("new");
    machine.secrets.add("apiKey_coingecko", "GlintarUser", "old");  // as it is after a refusal
    machine.advance(1s);
    EXPECT_THAT(model->keyNote(), HasSubstr("refused"));
    EXPECT_EQ(model->inputApiKey, "new");
}

TEST_F(KeySettingsTest, AChoiceMadeElsewhereIsShownWithItsOwnKey) {
    machine.preferences.setString("selectedSourceID", "gate");
    machine.secrets.add("apiKey_gate", "GlintarUser", "gate's");
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(model->selectedSource()->name + model->inputApiKey, "Gategate's");
    machine.secrets.add("apiKey_gate", "GlintarUser", "newer");
    machine.notifications.post(config::kCoinsUpdated);
    EXPECT_EQ(model->inputApiKey, "newer");
}

TEST_F(KeySettingsTest, ASourceThatIsNoLongerThereIsReplacedOnScreenAlone) {
    machine.preferences.setString("selectedSourceID", "gone");
    const APISettingsViewModel other(machine.platform());
    EXPECT_EQ(other.selectedSourceID, "coingecko");
    EXPECT_EQ(machine.preferences.string("selectedSourceID"), "gone");
}

TEST_F(KeySettingsTest, TheConfigurationIsTheCachedOneElseTheShippedOne) {
    const std::string cached = "/home/u/data/remote_api_endpoints.json";
    machine.files.unreadable[cached] = "I/O error";
    EXPECT_TRUE(APISettingsViewModel(machine.platform()).config);
    EXPECT_TRUE(machine.console.printed("✅ [Settings] 加载了已缓存的 API 配置"));
    EXPECT_TRUE(machine.console.printed("📦 [Settings] 缓存为空，加载出厂自带 API 配置"));
    machine.files.unreadable.clear();
    machine.files.contents[cached] = "damaged";
    EXPECT_FALSE(APISettingsViewModel(machine.platform()).config) << "it is not looked for elsewhere then";
    EXPECT_EQ(machine.console.count("❌ JSON 解析错误: "), 1);
}

}  // namespace
}  // namespace glintar::settings
