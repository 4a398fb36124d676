// Which configuration the engine works by, and when it takes up another.

#include "config/APIConfigUpdater.h"
#include "config/ConfigFiles.h"
#include "market/CryptoServiceTest.h"

#include <gmock/gmock.h>

namespace glintar::market {
namespace {

class ConfigLoadTest : public CryptoServiceTest {
protected:
    const std::filesystem::path cached = *config::cachedConfigFileURL(machine.platform());
    static constexpr std::string_view kOther = R"({"sources":[{"id":"other","name":"O","supports_batch":true,
        "url_template":"https://other.test","response_type":"array","price_path":"p","header":null}]})";
    std::string firstSource() { return service().loadedConfig() ? service().loadedConfig()->sources.at(0).id : ""; }
};

TEST_F(ConfigLoadTest, TheDownloadedCopyWinsWhenItCanBeRead) {
    const std::string other(kOther), shipped(test::kConfiguration);
    const std::string fromCopy = "📁 [Config] 成功从磁盘缓存加载远程配置\n",
                      fromBundle = "📦 [Config] 首次启动，加载内部初始配置\n";
    struct Row {
        std::string copy, bundle, first, said;
    };
    for (const auto& [copy, bundle, first, said] :
         {Row{other, shipped, "other", fromCopy},
          Row{other.substr(0, other.size() - 20), shipped, "coingecko", fromBundle}, Row{"", "{}", "", fromBundle}}) {
        machine.registry.clear();
        machine.console.lines.clear();
        machine.files.contents[cached] = copy;
        test::ship(machine, bundle);
        config::APIConfigUpdater::shared(machine.platform()).skipCheck();
        EXPECT_EQ(firstSource(), first);
        EXPECT_EQ(machine.console.count("⚠️ [Config]"), (first != "other") + (bundle == "{}"))
            << "why it was passed over";
        EXPECT_TRUE(machine.console.printed("🚀 [Glintar] " + said));
    }
    EXPECT_EQ(fetch(btc).error, "Config Missing");
    machine.directories.support.reset();
    machine.registry.clear();
    test::ship(machine);
    EXPECT_EQ(firstSource(), "coingecko") << "without a home directory";
}

TEST_F(ConfigLoadTest, ANewCopyIsTakenUpAtItsAnnouncementAndALostOneChangesNothing) {
    EXPECT_EQ(firstSource(), "coingecko");
    machine.files.contents[cached] = std::string(kOther);
    machine.notifications.post(config::kConfigUpdated);
    EXPECT_EQ(firstSource(), "other");
    EXPECT_TRUE(machine.console.printed("🚀 [Glintar] 🔄 [CryptoService] 收到更新通知，重新加载配置...\n"));

    machine.files.contents.clear();
    machine.notifications.post(config::kConfigUpdated);
    EXPECT_EQ(firstSource(), "other");
    EXPECT_EQ(machine.console.count("❌ [Config] 内部配置文件也找不到"), 1);
}

TEST_F(ConfigLoadTest, TheFirstUseLooksForANewerConfigurationAndTakesItUp) {
    machine.bundle.server = "https://config.test";
    machine.http.answer("_ver.json", R"({"version":1})");
    machine.http.answer("/api/api_endpoints.json", std::string(kOther));
    EXPECT_EQ(firstSource(), "coingecko") << "nobody waits for the answer";
    machine.advance(1s);
    EXPECT_EQ(firstSource(), "other");
}

TEST_F(ConfigLoadTest, ANewerDocumentThatIsNoConfigurationGivesWayToTheShippedOne) {
    machine.files.contents[cached] = std::string(kOther);
    machine.bundle.server = "https://config.test";
    machine.http.answer("_ver.json", R"({"version":1})");
    machine.http.answer("/api/api_endpoints.json", R"({"sources":"later"})");
    EXPECT_EQ(firstSource(), "other");
    machine.advance(1s);
    EXPECT_EQ(firstSource(), "coingecko");
}

TEST_F(ConfigLoadTest, WithoutAnyDocumentThereIsNoneAndItIsSaidOnce) {
    machine.files.contents.clear();
    machine.files.unreadable["/bundle/api_endpoints.json"] = "Permission denied";
    machine.files.unreadable[cached] = "Is a directory";
    EXPECT_EQ(fetch(btc).error, "Config Missing");
    EXPECT_EQ(machine.console.count("❌ [Config] 内部配置文件也找不到"), 1);
}

}  // namespace
}  // namespace glintar::market
