#include "config/APIConfigUpdater.h"
#include "config/CoinListUpdater.h"
#include "config/ConfigFiles.h"
#include "platform/virtual/VirtualPlatform.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace glintar::config {
namespace {

using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

template <class Updater>
RemoteResourceUpdater& shared(platform::Platform& platform) {
    return Updater::shared(platform);
}

struct Document {
    std::string name;
    RemoteResourceUpdater& (*updater)(platform::Platform&);
    std::string versionAddress, dataAddress;
    std::optional<std::filesystem::path> platform::VirtualDirectories::* directory;
    std::filesystem::path file;
    std::string_view key, notification;
    std::string old, body;
    std::string started, checkFailed, compared, found, upToDate, failed, stored;  // log lines; numbers left out
};

const Document kApiConfig{
    .name = "APIConfig",
    .updater = shared<APIConfigUpdater>,
    .versionAddress = "https://config.test/glintar/api/api_endpoints_ver.json",
    .dataAddress = "https://config.test/glintar/api/api_endpoints.json",
    .directory = &platform::VirtualDirectories::support,
    .file = "/home/u/data/remote_api_endpoints.json",
    .key = "saved_api_config_version",
    .notification = "ConfigUpdated",
    .old = R"({"sources":[]})",
    .body = R"( {"sources":[],"gas_configs":null})",
    .started = "☁️ [APIConfig] 开始检查配置更新...",
    .checkFailed = "⚠️ [APIConfig] 版本检查失败: ",
    .compared = "☁️ [APIConfig] 版本对比: 本地 v{} vs 远程 v{}",
    .found = "🚀 [APIConfig] 发现新配置 v{}，开始下载...",
    .upToDate = "✅ [APIConfig] 配置已是最新。",
    .failed = "❌ [APIConfig] 下载或保存失败: ",
    .stored = "💾 [APIConfig] 新配置已写入磁盘。",
};

const Document kCoinList{
    .name = "CoinList",
    .updater = shared<CoinListUpdater>,
    .versionAddress = "https://config.test/glintar/api/coingecko_coins_list_ver.json",
    .dataAddress = "https://config.test/glintar/api/coingecko_coins_list.json",
    .directory = &platform::VirtualDirectories::documentsFolder,
    .file = "/home/u/documents/coingecko_coins_list.json",
    .key = "coin_list_version",
    .notification = "CoinListUpdated",
    .old = R"([{"id":"a","symbol":"a","name":"a"}])",
    .body = R"([ {"id":"bitcoin","symbol":"btc","name":"Bitcoin","rank":1}])",
    .started = "🔍 [CoinList] 检查列表更新...",
    .checkFailed = "⚠️ [CoinList] 版本检查失败: ",
    .compared = "🔍 [CoinList] 版本对比: 本地 v{} vs 远程 v{}",
    .found = "🚀 [CoinList] 发现新列表 v{}，开始下载...",
    .upToDate = "✅ [CoinList] 列表已是最新。",
    .failed = "❌ [CoinList] 下载或保存失败: ",
    .stored = "✅ [CoinList] 列表更新完成并保存。",
};

/// A machine with version 3 of the document, and a server with a good version 6 of it.
class UpdaterTest : public testing::TestWithParam<Document> {
protected:
    UpdaterTest() {
        machine.bundle.server = "https://config.test/glintar";
        machine.files.contents[document.file] = document.old;
        machine.preferences.setInteger(document.key, 3);
        offer(R"({"version":6,"desc":"new"})");
        machine.http.answer(document.dataAddress, document.body);
    }

    void offer(std::string versionDocument, int status = 200) {
        machine.http.answer(document.versionAddress, std::move(versionDocument), status);
    }

    /// The check, on a machine that has just started.
    void check() {
        machine.registry.clear();
        machine.console.lines.clear();
        machine.http.requests.clear();
        document.updater(machine.platform()).checkForNewVersion();
        machine.advance(1s);
    }

    std::vector<std::string> log() const {
        std::vector<std::string> texts;
        for (const auto& [path, text] : machine.console.lines) {
            const std::string_view prefix = "🚀 [Glintar] ";
            EXPECT_THAT(text, StartsWith(prefix));
            EXPECT_EQ(text.back(), '\n');
            texts.push_back(text.substr(prefix.size(), text.size() - prefix.size() - 1));
        }
        return texts;
    }

    std::string compared(int local, int remote) const {
        return fmt::format(fmt::runtime(document.compared), local, remote);
    }
    std::string found(int remote) const { return fmt::format(fmt::runtime(document.found), remote); }

    void expectNothingChanged() {
        EXPECT_EQ(machine.files.contents[document.file], document.old);
        EXPECT_EQ(machine.preferences.integer(document.key), 3);
        EXPECT_THAT(announcements, IsEmpty());
    }

    const Document& document = GetParam();
    platform::VirtualPlatform machine;
    std::vector<std::string> announcements;  // what was there at each: the last log line, number, file
    std::unique_ptr<platform::NotificationCenter::Observation> observation =
        machine.notifications.observe(document.notification, [this] {
            announcements.push_back(fmt::format("{} v{} {}", log().back(), machine.preferences.integer(document.key),
                                                machine.files.contents[document.file]));
        });
};

INSTANTIATE_TEST_SUITE_P(Documents, UpdaterTest, testing::Values(kApiConfig, kCoinList),
                         [](const auto& test) { return test.param.name; });

TEST_P(UpdaterTest, TheFirstVersionIsStoredByteForByteAndThenAnnouncedOnce) {
    machine.files.contents.clear();
    machine.preferences.remove(document.key);
    offer(R"({"version":1})");
    check();
    EXPECT_THAT(announcements, ElementsAre(document.stored + " v1 " + document.body)) << "all is there when it is told";
    EXPECT_THAT(log(), ElementsAre(document.started, compared(0, 1), found(1), document.stored));

    ASSERT_THAT(machine.http.requests, SizeIs(2));
    EXPECT_EQ(machine.http.requests[0].url, document.versionAddress);
    EXPECT_EQ(machine.http.requests[1].url, document.dataAddress);
    EXPECT_THAT(machine.http.requests, Each(testing::Field(&platform::HttpRequest::headers, IsEmpty())));
    check();
    EXPECT_THAT(log(), ElementsAre(document.started, compared(1, 1), document.upToDate));
    EXPECT_THAT(announcements, SizeIs(1));
}

TEST_P(UpdaterTest, AVersionThatIsNotHigherIsNotDownloaded) {
    for (const int remote : {3, 2, 0, -1}) {  // a server that was rolled back does not take the newer copy away
        offer(fmt::format(R"({{"version":{}}})", remote));
        check();
        EXPECT_THAT(log(), ElementsAre(document.started, compared(3, remote), document.upToDate));
        EXPECT_THAT(machine.http.requests, SizeIs(1));
        expectNothingChanged();
    }
}

TEST_P(UpdaterTest, AStoredCopyThatIsOfNoUseIsFetchedAgain) {
    for (const char* copy : {"", "{}", "[1]"}) {
        machine.files.contents[document.file] = copy;
        machine.preferences.setInteger(document.key, 6);
        check();
        EXPECT_EQ(machine.files.contents[document.file], document.body) << copy;
    }
}

TEST_P(UpdaterTest, WhatIsNoVersionDocumentEndsTheCheck) {
    for (const char* body :
         {R"({"version":"6"})", R"({"version":6.5})", R"({"version":null})", R"({"version":99999999999999999999})",
          R"({"Version":6})", R"([{"version":6}])", R"({"version":6,"desc":5})", R"({"version":6)", "6", "",
          "<!DOCTYPE html><html>Not Found</html>"}) {
        SCOPED_TRACE(body);
        offer(body);
        check();
        EXPECT_THAT(log(), ElementsAre(document.started, StartsWith(document.checkFailed)));
        EXPECT_NE(log().back(), document.checkFailed) << "a reason belongs to it";
        EXPECT_THAT(machine.http.requests, SizeIs(1));
        expectNothingChanged();
    }
}

TEST_P(UpdaterTest, GoodDocumentsCountWhateverTheirStatusAndDescription) {
    for (const auto& [body, status] : {std::pair{R"({"version":6})", 404},
                                       {R"({"desc":null,"version":6,"x":[]})", 200},
                                       {"{\"version\":6,\"desc\":\"\"}\n", 500}}) {
        machine.preferences.setInteger(document.key, 5);
        offer(body, status);
        machine.http.answer(document.dataAddress, document.body, status);
        check();
        EXPECT_EQ(log().back(), document.stored) << body;
    }
}

TEST_P(UpdaterTest, ANetworkThatFailsIsReportedAtEitherStep) {
    const platform::HttpError timeout{platform::HttpError::Kind::Timeout, "Timeout was reached"};
    machine.http.failOnce(document.versionAddress, timeout);
    check();
    EXPECT_THAT(log(), ElementsAre(document.started, document.checkFailed + "Timeout was reached"));
    machine.http.failOnce(document.dataAddress, timeout);
    check();
    EXPECT_THAT(log(),
                ElementsAre(document.started, compared(3, 6), found(6), document.failed + "Timeout was reached"));
    expectNothingChanged();
}

TEST_P(UpdaterTest, WhatCannotBeUsedNeverReplacesTheGoodCopy) {
    std::vector<std::string> bodies{"<html>", "", document.body + "]", document.body.substr(0, 20), "5", "null"};
    if (document.name == "CoinList") {
        bodies.insert(bodies.end(), {"[]", "{}", R"({"error":"not found"})", R"([{"id":"bitcoin","symbol":"btc"}])"});
    }
    for (const auto& body : bodies) {
        SCOPED_TRACE(body);
        machine.http.answerOnce(document.dataAddress, body);
        check();
        EXPECT_THAT(log(), ElementsAre(document.started, compared(3, 6), found(6), StartsWith(document.failed)));
        EXPECT_NE(log().back(), document.failed) << "a reason belongs to it";
        expectNothingChanged();
    }
}

TEST_P(UpdaterTest, AFullDiskLeavesFileAndNumber) {
    machine.files.writeFailure = "No space left on device";
    check();
    EXPECT_EQ(log().back(), document.failed + "No space left on device");
    expectNothingChanged();
}

TEST_P(UpdaterTest, WithoutADirectoryItEndsSilentlyAfterTheDownload) {
    machine.directories.*document.directory = std::nullopt;
    for (const auto& body : {document.body, std::string("<html>")}) {
        machine.http.answerOnce(document.dataAddress, body);
        check();
        EXPECT_THAT(log(), ElementsAre(document.started, compared(3, 6), found(6)));
        EXPECT_EQ(machine.http.asked(document.dataAddress), 1);
        expectNothingChanged();
    }
}

TEST_P(UpdaterTest, WithoutAServerNothingIsSent) {
    machine.bundle.server.clear();
    check();
    EXPECT_THAT(log(), ElementsAre(document.started, document.checkFailed + "no configuration server"));
    EXPECT_THAT(machine.http.requests, IsEmpty());
}

TEST_P(UpdaterTest, AProcessChecksOnceOrNotAtAll) {
    machine.http.failOnce(document.versionAddress, {platform::HttpError::Kind::Connection, "down"});
    check();
    document.updater(machine.platform()).checkForNewVersion();
    machine.advance(1s);
    EXPECT_THAT(machine.http.requests, SizeIs(1)) << "not even after a failure";
    EXPECT_THAT(log(), SizeIs(2));

    machine.registry.clear();
    document.updater(machine.platform()).skipCheck();
    document.updater(machine.platform()).checkForNewVersion();
    machine.advance(1s);
    EXPECT_THAT(machine.http.requests, SizeIs(1));
    EXPECT_THAT(log(), SizeIs(2));
}

TEST_P(UpdaterTest, AnswersThatComeAfterTheEndOfTheProgramChangeNothing) {
    for (const auto end : {2ms, 7ms}) {  // before the first answer, and before the second
        machine.console.lines.clear();
        document.updater(machine.platform()).checkForNewVersion();
        machine.advance(end);
        const auto lines = log();
        machine.registry.clear();
        machine.advance(1s);
        EXPECT_EQ(log(), lines);
        expectNothingChanged();
    }
    EXPECT_EQ(machine.http.asked(document.dataAddress), 1) << "the second round got as far as the download";
}

}  // namespace
}  // namespace glintar::config
