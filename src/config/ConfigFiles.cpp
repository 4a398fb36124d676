#include "config/ConfigFiles.h"

#include "platform/Directories.h"
#include "platform/Platform.h"

#include <string>

namespace glintar::config {

std::optional<std::filesystem::path> cachedConfigFileURL(platform::Platform& platform) {
    auto directory = platform.directories.applicationSupport();
    return directory ? std::optional(*directory / "remote_api_endpoints.json") : std::nullopt;
}

std::optional<std::filesystem::path> cachedCoinListFile(platform::Platform& platform) {
    auto directory = platform.directories.documents();
    return directory ? std::optional(*directory / (std::string(kCoinListName) + ".json")) : std::nullopt;
}

}  // namespace glintar::config
