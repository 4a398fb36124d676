#include "config/RemoteResourceUpdater.h"

#include "json/Json.h"
#include "platform/Console.h"
#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/HttpClient.h"
#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/RunLoop.h"

#include <fmt/format.h>

namespace glintar::config {

namespace {

std::expected<std::int64_t, std::string> readVersion(platform::HttpResult result) {
    if (!result) {
        return std::unexpected(std::move(result.error().description));
    }
    const auto document = json::parseContainer(std::move(result->body));
    if (!document) {
        return std::unexpected(document.error().text());
    }
    const auto version = document->root().member("version");
    const auto number = version ? version->integer() : std::nullopt;
    if (!number) {
        return std::unexpected("version: missing or no integer");
    }
    const auto description = document->root().member("desc");
    if (description && !description->isNull() && !description->string()) {
        return std::unexpected("desc: not a text");
    }
    return *number;
}

}  // namespace

struct RemoteResourceUpdater::Download {
    std::string body;
    std::optional<std::string> flaw;
};

/// `read` turns the answer into what `then` takes on the main thread. It runs on the HTTP thread, so that a large
/// document does not hold up what the user sees, and must not touch this object.
template <class Read, class Then>
void RemoteResourceUpdater::fetch(std::string_view suffix, Read read, Then then) {
    platform_.http.send(
        {.url = fmt::format("{}/api/{}{}.json", platform_.bundle.configServer(), resource_.name, suffix)},
        [&runLoop = platform_.runLoop, read, then = lifetime_.guard(std::move(then))](auto result) mutable {
            runLoop.post([then = std::move(then), answer = read(std::move(result))]() mutable { then(answer); });
        });
}

void RemoteResourceUpdater::checkForNewVersion() {
    if (std::exchange(isCheckDone_, true)) {
        return;
    }
    platform_.console.log({resource_.started});
    if (platform_.bundle.configServer().empty()) {
        handleVersion(std::unexpected("no configuration server"));
        return;
    }
    fetch("_ver", readVersion, [this](const auto& remote) { handleVersion(remote); });
}

void RemoteResourceUpdater::handleVersion(const std::expected<std::int64_t, std::string>& remote) {
    const auto& [mark, tag, noun] = std::tie(resource_.mark, resource_.tag, resource_.noun);
    auto& console = platform_.console;
    if (!remote) {
        console.log({fmt::format("⚠️ [{}] 版本检查失败: {}", tag, remote.error())});
        return;
    }
    const auto local = platform_.preferences.integer(resource_.versionKey);
    console.log({fmt::format("{} [{}] 版本对比: 本地 v{} vs 远程 v{}", mark, tag, local, *remote)});
    if (local >= *remote) {
        console.log({fmt::format("✅ [{}] {}已是最新。", tag, noun)});
        return;
    }
    console.log({fmt::format("🚀 [{}] 发现新{} v{}，开始下载...", tag, noun, *remote)});
    const auto read = [flaw = resource_.flaw](platform::HttpResult result) -> std::expected<Download, std::string> {
        if (!result) {
            return std::unexpected(std::move(result.error().description));
        }
        auto found = flaw(result->body);
        return Download{.body = std::move(result->body), .flaw = std::move(found)};
    };
    fetch("", read, [this, version = *remote](const auto& download) { handleDownload(version, download); });
}

void RemoteResourceUpdater::handleDownload(std::int64_t version, const std::expected<Download, std::string>& download) {
    std::expected<void, std::string> outcome;
    if (download) {
        const auto path = resource_.storedAt(platform_);
        if (!path) {
            return;
        }
        outcome = store(*download, *path);
    } else {
        outcome = std::unexpected(download.error());
    }
    if (!outcome) {
        platform_.console.log({fmt::format("❌ [{}] 下载或保存失败: {}", resource_.tag, outcome.error())});
        return;
    }
    platform_.preferences.setInteger(resource_.versionKey, version);
    platform_.console.log({resource_.stored});
    platform_.notifications.post(resource_.notification);
}

std::expected<void, std::string> RemoteResourceUpdater::store(const Download& download,
                                                              const std::filesystem::path& path) const {
    return download.flaw ? std::unexpected(*download.flaw) : platform_.files.replace(path, download.body);
}

}  // namespace glintar::config
