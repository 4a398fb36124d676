#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::platform {

/// The user's directories for this program. Each is made, with those above it, before it is handed out. If that fails,
/// the first use of a file in it fails. None when the machine names no such place.
class Directories {
public:
    virtual ~Directories() = default;
    [[nodiscard]] virtual std::optional<std::filesystem::path> applicationSupport() const = 0;
    [[nodiscard]] virtual std::optional<std::filesystem::path> documents() const = 0;
    [[nodiscard]] virtual std::optional<std::filesystem::path> caches() const = 0;
};

/// What the program was shipped with.
class Bundle {
public:
    virtual ~Bundle() = default;

    /// Path of the shipped file "name.extension"; none when there is none.
    [[nodiscard]] virtual std::optional<std::filesystem::path> resource(std::string_view name,
                                                                        std::string_view extension) const = 0;
    [[nodiscard]] virtual std::string version() const = 0;

    /// Address of the configuration server (scheme, host, port, path without a slash at its end); empty means none.
    [[nodiscard]] virtual std::string configServer() const = 0;
};

}  // namespace glintar::platform
