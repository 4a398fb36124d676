#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

namespace glintar::platform {

/// Whole files. Every failure carries the system's description of it. Any thread.
class Files {
public:
    using Outcome = std::expected<void, std::string>;
    virtual ~Files() = default;

    [[nodiscard]] virtual bool exists(const std::filesystem::path& path) const = 0;
    [[nodiscard]] virtual std::expected<std::string, std::string> read(const std::filesystem::path& path) const = 0;

    /// Writes beside the file and renames, so that a crash leaves the old or the new file whole.
    virtual Outcome replace(const std::filesystem::path& path, std::string_view bytes) = 0;
    virtual Outcome remove(const std::filesystem::path& path) = 0;
    /// Removes a folder with all that is in it. Of a link, the link alone is removed.
    virtual Outcome removeAll(const std::filesystem::path& path) = 0;
    virtual Outcome makeDirectories(const std::filesystem::path& path) = 0;
};

}  // namespace glintar::platform
