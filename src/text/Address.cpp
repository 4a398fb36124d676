#include "text/Address.h"

#include <algorithm>

namespace glintar::text {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isLegal(char c) {
    constexpr std::string_view kMarks = "-._~:/?#[]@!$&'()*+,;=";
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || kMarks.contains(c);
}

bool beginsWithScheme(std::string_view text, std::string_view scheme) {
    return text.size() >= scheme.size() && std::ranges::equal(text.substr(0, scheme.size()), scheme, {}, [](char c) {
               return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
           });
}

bool hasHost(std::string_view afterScheme) {
    std::string_view authority = afterScheme.substr(0, afterScheme.find_first_of("/?#"));
    if (const auto at = authority.rfind('@'); at != authority.npos) {
        authority.remove_prefix(at + 1);
    }
    if (authority.starts_with('[')) {
        const auto end = authority.find(']');
        return end != authority.npos && end > 1;
    }
    return !authority.empty() && authority.front() != ':';
}

}  // namespace

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with) {
    std::string result;
    while (!what.empty()) {
        const auto found = text.find(what);
        if (found == text.npos) {
            break;
        }
        result.append(text.substr(0, found)).append(with);
        text.remove_prefix(found + what.size());
    }
    return result.append(text);
}

std::optional<std::string> webAddress(std::string_view text) {
    std::size_t schemeLength = 0;
    for (const std::string_view scheme : {"http://", "https://"}) {
        if (beginsWithScheme(text, scheme)) {
            schemeLength = scheme.size();
        }
    }
    if (schemeLength == 0 || !hasHost(text.substr(schemeLength))) {
        return std::nullopt;
    }
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool isEscape = c == '%' && i + 2 < text.size() && isHexDigit(text[i + 1]) && isHexDigit(text[i + 2]);
        if (isLegal(c) || isEscape) {
            result += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            result += {'%', kHexDigits[byte >> 4], kHexDigits[byte & 0xf]};
        }
    }
    return result;
}

bool isLoopbackHost(std::string_view host) {
    const bool isDotted = host.find_first_not_of("0123456789.") == std::string_view::npos;
    return host == "localhost" || host == "[::1]" || (isDotted && host.starts_with("127."));
}

}  // namespace glintar::text
