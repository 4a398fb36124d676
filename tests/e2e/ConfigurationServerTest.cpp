// The program beside a configuration server over TLS with an authority of its own, and beside one that lies.

#include "e2e/ProgramTest.h"
#include "support/LoopbackServer.h"
#include "support/TestFiles.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <signal.h>

namespace glintar::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class ConfigurationServerTest : public ProgramTest {
protected:
    /// Runs the line until the texts have been logged.
    std::string runUntil(const std::vector<std::string>& texts, const std::filesystem::path& authority) const {
        auto program = start({"line"}, {{"GLINTAR_CONFIG_SERVER", server.url("", "localhost")},
                                        {"SSL_CERT_FILE", authority},
                                        {"SSL_CERT_DIR", std::nullopt},
                                        {"NO_PROXY", "*"}});
        for (const auto& text : texts) {
            EXPECT_TRUE(program.waitForErrors(text)) << program.errors();
        }
        program.signal(SIGTERM);
        EXPECT_EQ(program.wait(), 0);
        return program.errors();
    }
    std::string runUntil(const std::vector<std::string>& texts) const {
        return runUntil(texts, server.authority().file());
    }

    void publish(const std::string& name, const support::LoopbackReply& document, int version) {
        server.on("/api/" + name + ".json", document);
        server.on("/api/" + name + "_ver.json", {.body = fmt::format(R"({{"version":{}}})", version)});
    }

    std::string marketDocument() const { return readFile(dataFolder() / "remote_api_endpoints.json"); }
    std::string storedCatalogue() const {
        const auto file = dataFolder() / "coingecko_coins_list.json";
        return std::filesystem::exists(file) ? readFile(file) : "";
    }

    support::LoopbackServer server{support::LoopbackServer::Transport::Tls};
};

constexpr std::string_view kCatalogue = R"([{"id":"bitcoin","symbol":"btc","name":"Bitcoin"}])";

TEST_F(ConfigurationServerTest, NewVersionsComeFromAStaticServerOverTlsAndStay) {
    // The very document in use, told apart by its blanks.
    const std::string published = marketDocument() + "\n\n";
    publish("api_endpoints", {.body = published}, 5);
    publish("coingecko_coins_list", {.body = std::string(kCatalogue)}, 2);
    const auto said = runUntil({"💾 [APIConfig] 新配置已写入磁盘。", "✅ [CoinList] 列表更新完成并保存。"});
    EXPECT_THAT(said, HasSubstr("🚀 [APIConfig] 发现新配置 v5，开始下载..."));
    EXPECT_EQ(marketDocument(), published);
    EXPECT_EQ(storedCatalogue(), kCatalogue);
    EXPECT_THAT(readFile(preferencesFile()), HasSubstr("saved_api_config_version=5"));
    EXPECT_THAT(readFile(preferencesFile()), HasSubstr("coin_list_version=2"));

    // Rolled back: a number that is not higher is left where it is.
    publish("api_endpoints", {.body = "{}"}, 4);
    publish("coingecko_coins_list", {.body = "[]"}, 2);
    runUntil({"✅ [APIConfig] 配置已是最新。", "✅ [CoinList] 列表已是最新。"});
    EXPECT_EQ(marketDocument(), published);
    EXPECT_EQ(storedCatalogue(), kCatalogue);
}

TEST_F(ConfigurationServerTest, AnAuthorityThatNobodyTrustsIsNotBelieved) {
    publish("api_endpoints", {.body = "{}"}, 9);
    const support::TestAuthority other;
    const std::string before = marketDocument();
    runUntil({"⚠️ [APIConfig] 版本检查失败: ", "⚠️ [CoinList] 版本检查失败: "}, other.file());
    EXPECT_EQ(marketDocument(), before);
    EXPECT_THAT(server.requests(), testing::IsEmpty());
}

TEST_F(ConfigurationServerTest, ADocumentThatBreaksOffOrNeverEndsReplacesNothing) {
    using Manner = support::LoopbackReply::Manner;
    std::ofstream(dataFolder() / "coingecko_coins_list.json") << kCatalogue;
    const std::string before = marketDocument();
    for (const auto& document :
         {support::LoopbackReply{
              .body = R"({"sources":[],"gas_configs":[]})", .manner = Manner::Truncate, .sentBytes = 20},
          support::LoopbackReply{.body = std::string(100000, ' '), .manner = Manner::Endless}}) {
        publish("api_endpoints", document, 9);
        publish("coingecko_coins_list", document, 9);
        const auto said = runUntil({"[APIConfig] 下载或保存失败: ", "[CoinList] 下载或保存失败: "});
        EXPECT_EQ(marketDocument(), before);
        EXPECT_EQ(storedCatalogue(), kCatalogue);
        EXPECT_THAT(said, Not(HasSubstr("💾")));
    }
}

}  // namespace
}  // namespace glintar::test
