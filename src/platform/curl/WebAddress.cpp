#include "platform/curl/WebAddress.h"

#include "platform/curl/CurlHandles.h"
#include "text/Address.h"

#include <fmt/format.h>

#include <algorithm>

namespace glintar::platform {
namespace {

std::string part(CURLU* parsed, CURLUPart which) {
    char* text = nullptr;
    if (curl_url_get(parsed, which, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) {
        return {};
    }
    std::string copy(text);
    curl_free(text);
    return copy;
}

std::expected<WebAddress, std::string> takeApart(CURLU* parsed) {
    const std::string scheme = part(parsed, CURLUPART_SCHEME);
    if (scheme != "http" && scheme != "https") {
        return std::unexpected(curl_easy_strerror(CURLE_UNSUPPORTED_PROTOCOL));
    }
    std::string host = part(parsed, CURLUPART_HOST);
    std::ranges::transform(host, host.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return WebAddress{.url = {},
                      .origin = fmt::format("{}://{}:{}", scheme, host, part(parsed, CURLUPART_PORT)),
                      .secure = scheme == "https",
                      .loopback = text::isLoopbackHost(host)};
}

}  // namespace

std::expected<WebAddress, std::string> WebAddress::parse(const std::string& url) {
    if (url.contains('\0')) {
        return std::unexpected(curl_url_strerror(CURLUE_MALFORMED_INPUT));
    }
    const CurlUrl parsed(curl_url());
    if (const CURLUcode code = curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), CURLU_NON_SUPPORT_SCHEME)) {
        return std::unexpected(curl_url_strerror(code));
    }
    auto address = takeApart(parsed.get());
    if (address) {
        address->url = url;
    }
    return address;
}

std::expected<WebAddress, std::string> WebAddress::follow(const char* location) const {
    const CurlUrl parsed(curl_url());
    curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), 0);
    if (const CURLUcode code = curl_url_set(parsed.get(), CURLUPART_URL, location,
                                            CURLU_NON_SUPPORT_SCHEME | CURLU_URLENCODE | CURLU_ALLOW_SPACE)) {
        return std::unexpected(curl_url_strerror(code));
    }
    auto address = takeApart(parsed.get());
    if (address) {
        char* text = nullptr;
        curl_url_get(parsed.get(), CURLUPART_URL, &text, 0);
        address->url = text != nullptr ? text : "";
        curl_free(text);
    }
    return address;
}

}  // namespace glintar::platform
