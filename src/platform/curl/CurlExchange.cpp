#include "platform/curl/CurlExchange.h"

#include "platform/curl/CurlTrust.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace glintar::platform {
namespace {

using std::chrono::milliseconds;
using Kind = HttpError::Kind;

constexpr int kMaxRedirects = 5;
constexpr milliseconds kConnectTimeout = std::chrono::seconds{10};
constexpr milliseconds kLongest = std::chrono::hours{24};  // keeps sums of times from overflowing

Kind kindOf(CURLcode code) {
    switch (code) {
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_URL_MALFORMAT:
            return Kind::BadAddress;
        case CURLE_COULDNT_RESOLVE_PROXY:
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_CONNECT:
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
        case CURLE_PARTIAL_FILE:
        case CURLE_GOT_NOTHING:
        case CURLE_SEND_ERROR:
        case CURLE_RECV_ERROR:
        case CURLE_PROXY:
            return Kind::Connection;
        case CURLE_OPERATION_TIMEDOUT:
            return Kind::Timeout;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_ISSUER_ERROR:
            return Kind::Tls;
        case CURLE_FILESIZE_EXCEEDED:
            return Kind::TooLarge;
        default:
            return Kind::Other;
    }
}

bool isRedirect(long status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

/// A token (RFC 9110, 5.6.2), and a value that stays on its line.
bool isSendable(const HttpHeader& header) {
    constexpr std::string_view kTokenSigns =
        "!#$%&'*+-.^_`|~0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr std::string_view kLineEnds("\r\n\0", 3);
    return !header.name.empty() && header.name.find_first_not_of(kTokenSigns) == std::string::npos &&
           header.value.find_first_of(kLineEnds) == std::string::npos;
}

void appendLine(CurlHeaders& list, const char* line) {
    if (curl_slist* const longer = curl_slist_append(list.get(), line)) {
        [[maybe_unused]] const auto* shorter = list.release();  // the longer one begins with it
        list.reset(longer);
    }
}

void appendHeader(CurlHeaders& list, const HttpHeader& header) {
    if (isSendable(header)) {
        // To curl, "Name:" alone means to leave the header out, and "Name;" to send it without a value.
        const bool blank = header.value.find_first_not_of(" \t") == std::string::npos;
        appendLine(list, (blank ? header.name + ";" : fmt::format("{}: {}", header.name, header.value)).c_str());
    }
}

}  // namespace

CurlExchange::CurlExchange(HttpRequest request, HttpCompletion completion, Instant now)
    : request_(std::move(request)),
      completion_(std::move(completion)),
      endsAt_(now + std::min(request_.timeout, kLongest)) {}

void CurlExchange::configure(CURL* handle) {
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    // Without it, ending a transfer waits for its name look-up, and with it everything on this thread.
    curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(kConnectTimeout.count()));
    curl_easy_setopt(handle, CURLOPT_PREREQFUNCTION, &CurlExchange::onConnected);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &CurlExchange::onHeader);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &CurlExchange::onBody);
}

std::optional<HttpError> CurlExchange::prepare(CURL* handle, CurlTrust& trust) {
    if (homeOrigin_.empty()) {
        auto address = WebAddress::parse(request_.url);
        if (!address) {
            return HttpError{Kind::BadAddress, std::move(address.error())};
        }
        address_ = std::move(*address);
        homeOrigin_ = address_.origin;
    }
    const auto left = std::chrono::ceil<milliseconds>(endsAt_ - Instant::clock::now());
    if (left <= milliseconds::zero()) {
        return failure(CURLE_OPERATION_TIMEDOUT);
    }

    const bool head = request_.method == HttpMethod::Head;
    handle_ = handle;
    headers_ = headers();
    body_.clear();
    errorText_[0] = '\0';
    stallsAt_ = Instant::max();
    curl_easy_setopt(handle, CURLOPT_URL, address_.url.c_str());
    curl_easy_setopt(handle, head ? CURLOPT_NOBODY : CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers_.get());
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(left.count()));
    // An answer to HEAD tells the length of a body that will not come.
    curl_easy_setopt(handle, CURLOPT_MAXFILESIZE_LARGE, head ? 0 : static_cast<curl_off_t>(request_.maxBodyBytes));
    curl_easy_setopt(handle, CURLOPT_PREREQDATA, this);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorText_.data());
    curl_easy_setopt(handle, CURLOPT_NOPROXY, address_.loopback ? "*" : nullptr);  // else as the environment says
    // No CURLOPT_PIPEWAIT: requests that wait to share a connection wait for its first answer too where it is HTTP/1.1
    // (plain with curl 7.88, TLS with 8.14), and a service that is silent about one coin would silence the others.
    if (address_.secure) {
        trust.apply(handle, store_);
    }
    return std::nullopt;
}

void CurlExchange::release(CURL* handle) {
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, nullptr);
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, nullptr);
}

std::optional<HttpResult> CurlExchange::advance(CURL* handle, CURLcode code, CurlTrust& trust) {
    if (code == CURLE_OK) {
        return answer(handle);
    }
    const bool distrusted = code == CURLE_PEER_FAILED_VERIFICATION || code == CURLE_SSL_CACERT_BADFILE;
    if (distrusted && store_ + 1 < trust.count()) {
        ++store_;
        return std::nullopt;
    }
    return std::unexpected(failure(code));
}

void CurlExchange::finish(HttpResult result) {
    try {
        HttpCompletion completion = std::move(completion_);
        completion(std::move(result));
    } catch (...) {  // NOLINT(bugprone-empty-catch): nobody could be told that the caller's code threw
    }
}

/// From here on the server is to say something; connecting has a limit of its own.
int CurlExchange::onConnected(void* self, char*, char*, int, int) {
    static_cast<CurlExchange*>(self)->heard();
    return CURL_PREREQFUNC_OK;
}

std::size_t CurlExchange::onHeader(char*, std::size_t size, std::size_t count, void* self) {
    static_cast<CurlExchange*>(self)->heard();
    return size * count;
}

std::size_t CurlExchange::onBody(char* data, std::size_t size, std::size_t count, void* self) {
    auto& exchange = *static_cast<CurlExchange*>(self);
    exchange.heard();
    return exchange.append({data, size * count}) ? size * count : 0;
}

/// curl's own low-speed limit looks at the mean of five seconds: after a quick start it notices silence late.
void CurlExchange::heard() {
    stallsAt_ = Instant::clock::now() + std::min(request_.stallTimeout, kLongest);
}

bool CurlExchange::append(std::string_view bytes) {
    if (bytes.size() > request_.maxBodyBytes - body_.size()) {
        tooLarge_ = true;
        return false;
    }
    try {
        if (body_.empty()) {
            curl_off_t length = 0;
            curl_easy_getinfo(handle_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
            body_.reserve(
                std::min<std::size_t>(length > 0 ? static_cast<std::size_t>(length) : 0, request_.maxBodyBytes));
        }
        body_.append(bytes);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

CurlHeaders CurlExchange::headers() const {
    CurlHeaders list;
    for (const HttpHeader& header : request_.headers) {
        appendHeader(list, header);
    }
    if (address_.origin == homeOrigin_) {
        for (const HttpHeader& header : request_.originHeaders) {
            appendHeader(list, header);
        }
    }
    if (request_.cachePolicy == HttpCachePolicy::Reload) {
        appendLine(list, "Cache-Control: no-cache");
        appendLine(list, "Pragma: no-cache");
    }
    return list;
}

std::optional<HttpResult> CurlExchange::answer(CURL* handle) {
    long status = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    curl_header* location = nullptr;
    if (isRedirect(status) && curl_easy_header(handle, "Location", 0, CURLH_HEADER, -1, &location) == CURLHE_OK) {
        return follow(location->value);
    }
    return HttpResponse{.status = static_cast<int>(status), .body = std::move(body_)};
}

std::optional<HttpResult> CurlExchange::follow(const char* location) {
    const auto refuse = [](std::string why) { return std::unexpected(HttpError{Kind::Redirect, std::move(why)}); };
    if (redirects_ == kMaxRedirects) {
        return refuse(curl_easy_strerror(CURLE_TOO_MANY_REDIRECTS));
    }
    auto target = address_.follow(location);
    if (!target) {
        return refuse(std::move(target.error()));
    }
    if (address_.secure && !target->secure) {
        return refuse(curl_easy_strerror(CURLE_UNSUPPORTED_PROTOCOL));
    }
    address_ = std::move(*target);
    ++redirects_;
    store_ = 0;
    return std::nullopt;
}

HttpError CurlExchange::failure(CURLcode code) const {
    if (tooLarge_) {
        return {Kind::TooLarge, curl_easy_strerror(CURLE_FILESIZE_EXCEEDED)};
    }
    return {kindOf(code), errorText_[0] != '\0' ? errorText_.data() : curl_easy_strerror(code)};
}

}  // namespace glintar::platform
