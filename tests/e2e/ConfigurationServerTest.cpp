// The program beside a configuration server as anybody may run one: nginx with plain files, over TLS with an authority
// of its own; and beside one that lies.

#include "e2e/ProgramTest.h"
#include "support/LoopbackServer.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"
#include "support/TestAuthority.h"
#include "support/TestFiles.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace glintar::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// nginx in the foreground, with a folder of files on a port of its own.
class Nginx {
public:
    Nginx() {
        std::filesystem::create_directories(documents() / "api");
        for (port_ = 18443 + ::getpid() % 20000;; ++port_) {
            std::ofstream(folder_.path() / "nginx.conf") << fmt::format(
                "daemon off; master_process off; pid {0}/pid; error_log {0}/errors; user root;\n"
                "events {{}}\n"
                "http {{ access_log {0}/requests; client_body_temp_path {0}/a; proxy_temp_path {0}/b;\n"
                " fastcgi_temp_path {0}/c; uwsgi_temp_path {0}/d; scgi_temp_path {0}/e;\n"
                " server {{ listen 127.0.0.1:{1} ssl; ssl_certificate {2}; ssl_certificate_key {3}; root {0}/root; }} "
                "}}\n",
                folder_.path().string(), port_, authority_.serverCertificate().string(),
                authority_.serverKey().string());
            program_.emplace(std::vector<std::string>{"/usr/sbin/nginx", "-e", (folder_.path() / "errors").string(),
                                                      "-c", (folder_.path() / "nginx.conf").string()},
                             Environment{});
            if (answers()) {
                return;
            }
            program_.reset();
            if (!readFile(folder_.path() / "errors").contains("Address already in use")) {
                ADD_FAILURE() << readFile(folder_.path() / "errors");
                return;
            }
        }
    }

    std::filesystem::path documents() const { return folder_.path() / "root"; }
    std::string address() const { return fmt::format("https://localhost:{}", port_); }
    std::string authority() const { return authority_.file(); }
    std::string requests() const { return readFile(folder_.path() / "requests"); }

    /// As docs/configuration-server.md says: the document first, its number second.
    void publish(const std::string& name, std::string_view document, int version) const {
        std::ofstream(documents() / "api" / (name + ".json")) << document;
        std::ofstream(documents() / "api" / (name + "_ver.json")) << fmt::format(R"({{"version":{}}})", version);
    }

private:
    bool answers() {
        for (int i = 0; i < 100 && program_->isRunning(); ++i) {
            if (httplib::Client("127.0.0.1", port_).Get("/")) {  // plain HTTP gets a plain "400"
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds{20});
        }
        return false;
    }

    TemporaryFolder folder_;
    support::TestAuthority authority_;
    int port_ = 0;
    std::optional<Program> program_;
};

class ConfigurationServerTest : public ProgramTest {
protected:
    /// Runs the line until the texts have been logged.
    std::string runUntil(const std::string& server, const std::string& authority,
                         const std::vector<std::string>& texts) const {
        auto program = start({"line"}, {{"GLINTAR_CONFIG_SERVER", server},
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

    std::string marketDocument() const { return readFile(dataFolder() / "remote_api_endpoints.json"); }
    std::string storedCatalogue() const {
        const auto file = dataFolder() / "coingecko_coins_list.json";
        return std::filesystem::exists(file) ? readFile(file) : "";
    }
};

constexpr std::string_view kCatalogue = R"([{"id":"bitcoin","symbol":"btc","name":"Bitcoin"}])";

TEST_F(ConfigurationServerTest, NewVersionsComeFromAStaticServerOverTlsAndStay) {
    const Nginx server;
    // The very document in use, told apart by its blanks.
    const std::string published = marketDocument() + "\n\n";
    server.publish("api_endpoints", published, 5);
    server.publish("coingecko_coins_list", kCatalogue, 2);
    const auto said = runUntil(server.address(), server.authority(),
                               {"💾 [APIConfig] 新配置已写入磁盘。", "✅ [CoinList] 列表更新完成并保存。"});
    EXPECT_THAT(said, HasSubstr("🚀 [APIConfig] 发现新配置 v5，开始下载..."));
    EXPECT_EQ(marketDocument(), published);
    EXPECT_EQ(storedCatalogue(), kCatalogue);
    EXPECT_THAT(readFile(preferencesFile()), HasSubstr("saved_api_config_version=5"));
    EXPECT_THAT(readFile(preferencesFile()), HasSubstr("coin_list_version=2"));

    // Rolled back: a number that is not higher is left where it is.
    server.publish("api_endpoints", "{}", 4);
    server.publish("coingecko_coins_list", "[]", 2);
    runUntil(server.address(), server.authority(), {"✅ [APIConfig] 配置已是最新。", "✅ [CoinList] 列表已是最新。"});
    EXPECT_EQ(marketDocument(), published);
    EXPECT_EQ(storedCatalogue(), kCatalogue);
}

TEST_F(ConfigurationServerTest, AnAuthorityThatNobodyTrustsIsNotBelieved) {
    const Nginx server;
    server.publish("api_endpoints", "{}", 9);
    const support::TestAuthority other;
    const std::string before = marketDocument();
    runUntil(server.address(), other.file(), {"⚠️ [APIConfig] 版本检查失败: ", "⚠️ [CoinList] 版本检查失败: "});
    EXPECT_EQ(marketDocument(), before);
    EXPECT_THAT(server.requests(), Not(HasSubstr("/api/")));
}

struct Lie {
    std::string name;
    support::LoopbackReply version;
    support::LoopbackReply document;
    std::string line;
};

class LyingServerTest : public ConfigurationServerTest, public testing::WithParamInterface<Lie> {};

TEST_P(LyingServerTest, NeverReplacesWhatIsThere) {
    support::LoopbackServer server(support::LoopbackServer::Transport::Tls);
    const std::string good = R"([{"id":"kept","symbol":"k","name":"Kept"}])";
    std::ofstream(dataFolder() / "coingecko_coins_list.json") << good;
    const std::string before = marketDocument();
    for (const auto* document : {"api_endpoints", "coingecko_coins_list"}) {
        server.on(fmt::format("/api/{}_ver.json", document), GetParam().version);
        server.on(fmt::format("/api/{}.json", document), GetParam().document);
    }
    const auto said = runUntil(server.url("", "localhost"), server.authority().file(),
                               {"[APIConfig] " + GetParam().line, "[CoinList] " + GetParam().line});
    EXPECT_EQ(marketDocument(), before);
    EXPECT_EQ(storedCatalogue(), good);
    EXPECT_THAT(said, Not(HasSubstr("💾")));
}

using Manner = support::LoopbackReply::Manner;
constexpr auto kCheckFailed = "版本检查失败: ";
constexpr auto kDownloadFailed = "下载或保存失败: ";
const support::LoopbackReply kVersionNine{.body = R"({"version":9})"};

INSTANTIATE_TEST_SUITE_P(
    Lies, LyingServerTest,
    testing::Values(Lie{"AnErrorPageForANumber", {.body = "<html>404</html>"}, {.body = "{}"}, kCheckFailed},
                    Lie{"ATextForANumber", {.body = R"({"version":"9"})"}, {.body = "{}"}, kCheckFailed},
                    Lie{"AnErrorPageForADocument", kVersionNine, {.body = "<html>welcome</html>"}, kDownloadFailed},
                    Lie{"HalfADocument",
                        kVersionNine,
                        {.body = R"({"sources":[],"gas_configs":[]})", .manner = Manner::Truncate, .sentBytes = 20},
                        kDownloadFailed},
                    Lie{"ADocumentWithoutEnd",
                        kVersionNine,
                        {.body = std::string(100000, ' '), .manner = Manner::Endless},
                        kDownloadFailed}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace glintar::test
