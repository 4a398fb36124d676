#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::app {

/// The address that was given when the program was built; empty means none.
[[nodiscard]] std::string_view builtInConfigServer();

/// Where the makers of this build can be found, and where it looks for newer ones. Addresses; an empty one leaves out
/// what it is for.
struct Deployment {
    std::string supportAddress;  ///< mail
    std::string website;
    std::string faqPage;
    std::string releaseFeed;  ///< as `updates::UpdateController` reads it
};
[[nodiscard]] Deployment deployment();

/// The configuration server's address: the environment's choice (GLINTAR_CONFIG_SERVER) when there is one, be it empty,
/// else the one built in; empty means none. It must be https, or http to a loopback address, and must not end with a
/// slash; the error is a sentence for the user.
[[nodiscard]] std::expected<std::string, std::string> configServer(std::optional<std::string_view> fromEnvironment,
                                                                   std::string_view builtIn = builtInConfigServer());

}  // namespace glintar::app
