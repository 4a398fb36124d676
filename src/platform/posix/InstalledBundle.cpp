#include "platform/posix/InstalledBundle.h"

#include <fmt/format.h>

#include <array>
#include <system_error>

namespace glintar::platform {

namespace {

/// The folders that may hold the file, nearest first.
std::optional<std::filesystem::path> find(const std::filesystem::path& relative) {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    if (error) {
        return std::nullopt;  // never the current directory, which may be anybody's
    }
    for (const auto& base : {folder, folder / ".." / GLINTAR_LIBRARY_FOLDER / "glintar"}) {
        auto path = base / relative;
        if (std::filesystem::exists(path, error)) {
            return path;
        }
    }
    return std::nullopt;
}

}  // namespace

InstalledBundle::InstalledBundle(std::string configServer) : configServer_(std::move(configServer)) {}

std::optional<std::filesystem::path> InstalledBundle::resource(std::string_view name,
                                                               std::string_view extension) const {
    return find(fmt::format("resources/{}.{}", name, extension));
}

std::string InstalledBundle::version() const {
    return GLINTAR_VERSION;
}

std::optional<std::filesystem::path> InstalledBundle::program(std::string_view name) {
    return find(name);
}

}  // namespace glintar::platform
