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

#include <type_traits>

namespace glintar::config {

namespace {

std::expected<std::int64_t, std::string> readVersion(std::string body) {
    const auto document = json::parseContainer(std::move(body));
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

struct RemoteResourceUpdater::Comparison {
    std::int64_t remote = 0;
    bool hasCopy = false;  ///< one that can be used
};

struct RemoteResourceUpdater::Download {
    std::string body;
    std::expected<void, std::string> verdict;
};

/// `read` turns the body into what `then` takes on the main thread, or says what is wrong with it. It runs on the HTTP
/// thread, so that a large document does not hold up what the user sees, and must not touch this object.
template <class Read, class Then>
void RemoteResourceUpdater::fetch(std::string_view address, Read read, Then then) {
    using Answer = std::invoke_result_t<Read, std::string>;
    platform_.http.send(
        {.url = fmt::format("{}{}", platform_.bundle.configServer(), address)},
        [&runLoop = platform_.runLoop, read = std::move(read),
         then = lifetime_.guard(std::move(then))](platform::HttpResult result) mutable {
            Answer answer =
                result ? read(std::move(result->body)) : Answer(std::unexpected(std::move(result.error().description)));
            runLoop.post([then = std::move(then), answer = std::move(answer)]() mutable { then(answer); });
        });
}

template <class... Values>
void RemoteResourceUpdater::log(std::string_view line, const Values&... values) {
    platform_.console.log({fmt::format(fmt::runtime(line), values...)});
}

void RemoteResourceUpdater::checkForNewVersion() {
    if (std::exchange(isCheckDone_, true)) {
        return;
    }
    log(resource_.lines.started);
    if (platform_.bundle.configServer().empty()) {
        handleVersion(std::unexpected("no configuration server"));
        return;
    }
    const auto read = [&files = platform_.files, path = resource_.storedAt(platform_),
                       canBeUsed = resource_.canBeUsed](std::string body) -> std::expected<Comparison, std::string> {
        const auto remote = readVersion(std::move(body));
        if (!remote) {
            return std::unexpected(remote.error());
        }
        if (!path) {  // where none can be stored none is missing
            return Comparison{.remote = *remote, .hasCopy = true};
        }
        auto stored = files.read(*path);
        return Comparison{.remote = *remote, .hasCopy = stored && canBeUsed(*std::move(stored))};
    };
    fetch(resource_.verUrl, read, [this](const auto& compared) { handleVersion(compared); });
}

void RemoteResourceUpdater::handleVersion(const std::expected<Comparison, std::string>& compared) {
    const auto& lines = resource_.lines;
    if (!compared) {
        log(lines.versionCheckFailed, compared.error());
        return;
    }
    const auto local = compared->hasCopy ? platform_.preferences.integer(resource_.versionKey) : 0;
    log(lines.compared, local, compared->remote);
    if (local >= compared->remote) {
        log(lines.upToDate);
        return;
    }
    log(lines.newerFound, compared->remote);
    const auto read = [check = resource_.check](std::string body) -> std::expected<Download, std::string> {
        auto verdict = check(body);
        return Download{.body = std::move(body), .verdict = std::move(verdict)};
    };
    fetch(resource_.dataUrl, read,
          [this, version = compared->remote](const auto& download) { handleDownload(version, download); });
}

void RemoteResourceUpdater::handleDownload(std::int64_t version, const std::expected<Download, std::string>& download) {
    const auto& lines = resource_.lines;
    if (!download) {
        log(lines.downloadFailed, download.error());
        return;
    }
    const auto path = resource_.storedAt(platform_);
    if (!path) {
        return;
    }
    const auto outcome = download->verdict ? platform_.files.replace(*path, download->body) : download->verdict;
    if (!outcome) {
        log(lines.downloadFailed, outcome.error());
        return;
    }
    platform_.preferences.setInteger(resource_.versionKey, version);
    log(lines.stored);
    platform_.notifications.post(resource_.notification);
}

}  // namespace glintar::config
