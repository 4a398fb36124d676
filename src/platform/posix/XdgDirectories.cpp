#include "platform/posix/XdgDirectories.h"

#include <cstdlib>
#include <system_error>

namespace glintar::platform {

namespace {

std::optional<std::filesystem::path> absolutePathIn(const char* variable) {
    const char* value = std::getenv(variable);
    const std::filesystem::path path = value ? value : "";
    return path.is_absolute() ? std::optional(path) : std::nullopt;
}

std::optional<std::filesystem::path> ownFolder(const char* variable, const char* insideHome) {
    auto base = absolutePathIn(variable);
    if (!base) {
        const auto home = absolutePathIn("HOME");
        if (!home) {
            return std::nullopt;
        }
        base = *home / insideHome;
    }
    return *base / "glintar";
}

std::optional<std::filesystem::path> made(std::optional<std::filesystem::path> folder) {
    if (folder) {
        std::error_code ignored;  // a file in it fails later, with a reason
        std::filesystem::create_directories(*folder, ignored);
    }
    return folder;
}

}  // namespace

std::optional<std::filesystem::path> XdgDirectories::applicationSupport() const {
    return made(ownFolder("XDG_DATA_HOME", ".local/share"));
}

std::optional<std::filesystem::path> XdgDirectories::documents() const {
    return applicationSupport();
}

std::optional<std::filesystem::path> XdgDirectories::caches() const {
    return made(ownFolder("XDG_CACHE_HOME", ".cache"));
}

std::optional<std::filesystem::path> XdgDirectories::configuration() {
    return ownFolder("XDG_CONFIG_HOME", ".config");
}

}  // namespace glintar::platform
