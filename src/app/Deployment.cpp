#include "app/Deployment.h"

#include "text/Address.h"
#include "text/Unicode.h"

#include <fmt/format.h>

namespace glintar::app {

namespace {

/// Host of an address without its scheme: up to the port or path, an IPv6 address in its brackets.
std::string hostOf(std::string_view rest) {
    const auto authority = rest.substr(0, rest.find_first_of("/?#"));
    const auto end = authority.starts_with('[') ? authority.find(']') + 1 : authority.find(':');
    return text::lower(authority.substr(0, end));
}

}  // namespace

std::string_view builtInConfigServer() {
    return GLINTAR_BUILT_IN_CONFIG_SERVER;
}

Deployment deployment() {
    return {.supportAddress = GLINTAR_SUPPORT_ADDRESS,
            .website = GLINTAR_WEBSITE,
            .faqPage = GLINTAR_FAQ_PAGE,
            .releaseFeed = GLINTAR_RELEASE_FEED};
}

std::expected<std::string, std::string> configServer(std::optional<std::string_view> fromEnvironment,
                                                     std::string_view builtIn) {
    const std::string_view address = fromEnvironment.value_or(builtIn);
    if (address.empty()) {
        return std::string();
    }
    const auto refuse = [&](std::string_view reason) {
        return std::unexpected(fmt::format("GLINTAR_CONFIG_SERVER \"{}\": {}", text::oneLine(address), reason));
    };
    if (text::webAddress(address) != address || address.find_first_of("?#@") != std::string_view::npos) {
        return refuse("not an address such as https://host/path");
    }
    if (address.ends_with('/')) {
        return refuse("must not end with a slash");
    }
    const bool isSecure = text::lower(address.substr(0, 8)) == "https://";
    if (!isSecure && !text::isLoopbackHost(hostOf(address.substr(address.find("//") + 2)))) {
        return refuse("must be https; plain http is for loopback addresses only");
    }
    return std::string(address);
}

}  // namespace glintar::app
