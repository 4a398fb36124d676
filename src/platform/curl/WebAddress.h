#pragma once

#include <expected>
#include <string>

namespace glintar::platform {

/// An absolute http or https address, taken apart as far as redirects need it.
struct WebAddress {
    std::string url;
    std::string origin;  ///< scheme, host and port, comparable
    bool secure = false;
    bool loopback = false;  ///< this machine, which is asked without a proxy

    /// Fails with curl's description.
    static std::expected<WebAddress, std::string> parse(const std::string& url);

    /// Where a Location header leads from here; relative ones too, and blanks in it are escaped.
    [[nodiscard]] std::expected<WebAddress, std::string> follow(const char* location) const;
};

}  // namespace glintar::platform
