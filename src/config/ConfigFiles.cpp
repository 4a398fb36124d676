#include "config/ConfigFiles.h"

#include "config/CoinListUpdater.h"
#include "platform/Directories.h"
#include "platform/Platform.h"

namespace glintar::config {

std::optional<std::filesystem::path> cachedConfigFileURL(platform::Platform& platform) {
    auto directory = platform.directories.applicationSupport();
    return directory ? std::optional(*directory / "remote_api_endpoints.json") : std::nullopt;
}

std::optional<std::filesystem::path> cachedCoinListFile(platform::Platform& platform) {
    auto directory = platform.directories.documents();
    return directory ? std::optional(*directory / CoinListUpdater::listFileName) : std::nullopt;
}

}  // namespace glintar::config
