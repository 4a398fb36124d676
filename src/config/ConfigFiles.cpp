#include "config/ConfigFiles.h"

#include "platform/Directories.h"
#include "platform/Platform.h"

namespace glintar::config {

std::optional<std::filesystem::path> cachedConfigFileURL(platform::Platform& platform) {
    auto directory = platform.directories.applicationSupport();
    return directory ? std::optional(*directory / "remote_api_endpoints.json") : std::nullopt;
}

}  // namespace glintar::config
