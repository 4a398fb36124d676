#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace glintar::platform {
struct Platform;
}

namespace glintar::config {

/// Posted after a new source configuration has been written.
inline constexpr std::string_view kConfigUpdated = "ConfigUpdated";

/// Where the downloaded source configuration lies; none when the machine names no application-support directory.
[[nodiscard]] std::optional<std::filesystem::path> cachedConfigFileURL(platform::Platform& platform);

/// Where the downloaded coin catalogue lies; none when the machine names no documents directory.
[[nodiscard]] std::optional<std::filesystem::path> cachedCoinListFile(platform::Platform& platform);

}  // namespace glintar::config
