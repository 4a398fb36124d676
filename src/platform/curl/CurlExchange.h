#pragma once

#include "platform/HttpClient.h"
#include "platform/RunLoop.h"
#include "platform/curl/CurlHandles.h"
#include "platform/curl/WebAddress.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::platform {

class CurlTrust;

/// One request on its way to its completion, over all its redirects. Belongs to the HTTP thread once submitted.
///
/// A hop is one question and one answer: `prepare` fills a handle, the caller lets curl transfer it, `advance` judges
/// what came of it. This repeats until there is a result, which `finish` hands over.
class CurlExchange {
public:
    /// `now` is when the time of the whole exchange begins to run.
    CurlExchange(HttpRequest request, HttpCompletion completion, Instant now);
    CurlExchange(const CurlExchange&) = delete;
    CurlExchange& operator=(const CurlExchange&) = delete;

    /// Sets what all requests have in common; once in the life of a handle.
    static void configure(CURL* handle);

    /// Sets up the next hop, or says why there is none. The handle then refers to this exchange.
    std::optional<HttpError> prepare(CURL* handle, CurlTrust& trust);

    /// The result of the exchange; none when another hop is to be prepared.
    std::optional<HttpResult> advance(CURL* handle, CURLcode code, CurlTrust& trust);

    /// Makes the handle forget its exchange.
    static void release(CURL* handle);

    /// When the server will have been silent for too long.
    [[nodiscard]] Instant stallsAt() const { return stallsAt_; }

    /// Runs the completion. Once.
    void finish(HttpResult result);

private:
    static int onConnected(void* self, char*, char*, int, int);
    static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* self);
    void heard();
    bool append(std::string_view bytes);
    [[nodiscard]] CurlHeaders headers() const;
    std::optional<HttpResult> answer(CURL* handle);
    std::optional<HttpResult> follow(const char* location);
    [[nodiscard]] HttpError failure(CURLcode code) const;

    HttpRequest request_;
    HttpCompletion completion_;
    Instant endsAt_;
    Instant stallsAt_ = Instant::max();

    WebAddress address_;      ///< of the hop under way
    std::string homeOrigin_;  ///< of the request
    int redirects_ = 0;
    std::size_t store_ = 0;  ///< of the certificates tried in this hop

    CURL* handle_ = nullptr;
    CurlHeaders headers_;
    std::string body_;
    bool tooLarge_ = false;
    std::array<char, CURL_ERROR_SIZE> errorText_{};
};

}  // namespace glintar::platform
