// CryptoService: one request to a source, its retry and its cool-down.

#include "keystore/KeychainHelper.h"
#include "market/CryptoService.h"
#include "platform/Console.h"
#include "platform/Platform.h"
#include "platform/RunLoop.h"
#include "platform/WorkQueue.h"
#include "text/Unicode.h"

#include <fmt/format.h>

namespace glintar::market {

namespace {

using namespace std::chrono_literals;

constexpr auto kCoolDown = 60s;
constexpr auto kCoolDownNotice = 60'500ms;  // so that whoever is told finds the cool-down over
constexpr auto kRetryDelay = 1s;

}  // namespace

struct CryptoService::SentRequest {
    std::string address;
    SourcePtr source;
    std::string apiKey;
    int retriesLeft;
    SourceCompletion completion;
};

void CryptoService::performRequest(std::string address, SourcePtr source, std::string apiKey, int retriesLeft,
                                   SourceCompletion completion) {
    if (sourceCoolDowns_.remaining(source->id)) {
        completion(std::nullopt, "Rate Limited (429)");
        return;
    }
    platform::HttpRequest request{
        .url = address,
        .headers = {{"User-Agent", "Mozilla/5.0"}, {"Accept", "application/json"}},
    };
    if (source->header && keystore::KeychainHelper::canBeSent(apiKey)) {
        const auto name = text::lower(*source->header);
        std::erase_if(request.headers, [&](const auto& header) { return text::lower(header.name) == name; });
        request.originHeaders.push_back({*source->header, apiKey});
    }
    SentRequest sent{std::move(address), std::move(source), std::move(apiKey), retriesLeft, std::move(completion)};
    platform_.http.send(std::move(request),
                        [alive = weak_from_this(), sent = std::move(sent)](platform::HttpResult result) mutable {
                            if (const auto service = alive.lock()) {
                                service->handleResponse(std::move(sent), std::move(result));
                            } else {
                                sent.completion(std::nullopt, "Network Error");
                            }
                        });
}

void CryptoService::handleResponse(SentRequest request, platform::HttpResult result) {
    if (!result) {
        platform_.console.debug("❌ Network Error: " + result.error().description);
        request.completion(std::nullopt, "Network Error");
        return;
    }
    const int status = result->status;
    platform_.console.debug(
        fmt::format("⚡️ [Network] Perform Request : {} -- Code:{}", text::oneLine(request.source->id), status));
    platform_.console.debug("⚡️ [Network Path] " + request.address);
    if (status == 200) {
        // An answer without a body is neither a body nor an error.
        request.completion(result->body.empty() ? std::nullopt : std::optional(std::move(result->body)), std::nullopt);
    } else if (status == 429) {
        startCoolDown(request.source->id);
        request.completion(std::nullopt, "Limit Exceeded (429)");
    } else if (status >= 500 && request.retriesLeft > 0) {
        platform_.workQueue.asyncAfter(kRetryDelay, [alive = weak_from_this(), request = std::move(request)]() mutable {
            if (const auto service = alive.lock()) {
                service->performRequest(std::move(request.address), std::move(request.source),
                                        std::move(request.apiKey), request.retriesLeft - 1,
                                        std::move(request.completion));
            } else {
                request.completion(std::nullopt, "Network Error");
            }
        });
    } else if (status >= 500) {
        request.completion(std::nullopt, fmt::format("Server Error ({})", status));
    } else {
        request.completion(std::nullopt, fmt::format("HTTP {}", status));
    }
}

void CryptoService::startCoolDown(const std::string& sourceId) {
    platform_.console.debug(fmt::format("🚨 [{}] 429 Detected! Cooling down...", text::oneLine(sourceId)));
    sourceCoolDowns_.start(sourceId, kCoolDown);
    platform_.runLoop.postAfter(kCoolDownNotice, [alive = weak_from_this()] {
        if (const auto service = alive.lock()) {
            service->platform_.notifications.post(kCoolDownEnded);
        }
    });
}

}  // namespace glintar::market
