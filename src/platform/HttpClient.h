#pragma once

#include <chrono>
#include <cstddef>
#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace glintar::platform {

enum class HttpMethod { Get, Head };

/// `ProtocolDefault` follows the protocol's caching rules; `Reload` asks every cache on the way for a fresh answer.
enum class HttpCachePolicy { ProtocolDefault, Reload };

struct HttpHeader {
    std::string name;
    std::string value;
    bool operator==(const HttpHeader&) const = default;
};

struct HttpRequest {
    std::string url;  ///< http or https, all characters legal in an address
    HttpMethod method = HttpMethod::Get;
    std::vector<HttpHeader> headers;
    /// Headers that carry secrets: sent to the origin (scheme, host, port) of `url` alone, never on to another one
    /// after a redirect.
    std::vector<HttpHeader> originHeaders;
    std::chrono::milliseconds stallTimeout = std::chrono::seconds{10};  ///< without a byte for so long: a time-out
    std::chrono::milliseconds timeout = std::chrono::seconds{60};       ///< for the whole exchange, redirects included
    HttpCachePolicy cachePolicy = HttpCachePolicy::ProtocolDefault;
    std::size_t maxBodyBytes = std::size_t{16} << 20;  ///< after decompression; a larger body is a failure
};

struct HttpResponse {
    int status = 0;    ///< 0 when the answer was no HTTP answer
    std::string body;  ///< decompressed; empty means there was none
};

/// Why there is no answer. `description` is a short English text for a log line.
struct HttpError {
    enum class Kind { BadAddress, Connection, Timeout, Tls, TooLarge, Redirect, Cancelled, Other };
    Kind kind = Kind::Other;
    std::string description;
};

using HttpResult = std::expected<HttpResponse, HttpError>;

/// Runs exactly once, on the client's own thread: with the answer, or with the error, `Cancelled` included.
using HttpCompletion = std::move_only_function<void(HttpResult)>;

/// A request under way. Dropping it changes nothing; `cancel` makes it end soon, from any thread.
class HttpCall {
public:
    virtual ~HttpCall() = default;
    virtual void cancel() = 0;
};

/// Sends HTTP requests. `send` may be called from any thread, returns at once, and never completes before it
/// returns. At its destruction the client completes what is under way with `Cancelled`.
///
/// Redirects are followed at most five times, to http or https only and never from https to http; anything else
/// is an error of kind `Redirect`. Connecting may take ten seconds.
class HttpClient {
public:
    virtual ~HttpClient() = default;
    virtual std::shared_ptr<HttpCall> send(HttpRequest request, HttpCompletion completion) = 0;

    /// For after sleep or a change of network, when a connection may be dead without a sign of it. No connection that
    /// is open now is used again, and requests under way complete soon with an error of kind `Connection`. Any thread.
    virtual void dropConnections() = 0;
};

}  // namespace glintar::platform
