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
    for (const auto& base : {folder, folder / ".." / GLINTAR_PRIVATE_FOLDER / "glintar"}) {
        auto path = base / relative;
        if (std::filesystem::exists(path, error)) {
            return path;
        }
    }
    return std::nullopt;
}

}  // namespace

InstalledBundle::InstalledBundle(std::string configServer, std::filesystem::path replacements)
    : configServer_(std::move(configServer)), replacements_(std::move(replacements)) {}

std::optional<std::filesystem::path> InstalledBundle::resource(std::string_view name,
                                                               std::string_view extension) const {
    const auto file = fmt::format("{}.{}", name, extension);
    std::error_code error;
    if (!replacements_.empty() && std::filesystem::exists(replacements_ / file, error)) {
        return replacements_ / file;
    }
    return find(std::filesystem::path("resources") / file);
}

std::string InstalledBundle::version() const {
    return GLINTAR_VERSION;
}

std::optional<std::filesystem::path> InstalledBundle::program(std::string_view name) {
    return find(name);
}

}  // namespace glintar::platform
