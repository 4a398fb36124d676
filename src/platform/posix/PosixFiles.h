#pragma once

#include "platform/Files.h"

namespace glintar::platform {

/// Files on disk. Only regular files of up to 64 MiB are read.
class PosixFiles final : public Files {
public:
    bool exists(const std::filesystem::path& path) const override;
    std::expected<std::string, std::string> read(const std::filesystem::path& path) const override;
    Outcome replace(const std::filesystem::path& path, std::string_view bytes) override;
    Outcome remove(const std::filesystem::path& path) override;
    Outcome removeAll(const std::filesystem::path& path) override;
    Outcome makeDirectories(const std::filesystem::path& path) override;
};

/// Removes what killed runs have left beside files of ours in the folder, if it is more than an hour old: what
/// `replace` writes, and QSettings beside a file ".conf". Any thread.
void removeLeftovers(const std::filesystem::path& folder);

}  // namespace glintar::platform
