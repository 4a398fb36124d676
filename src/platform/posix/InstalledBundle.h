#pragma once

#include "platform/Directories.h"

namespace glintar::platform {

/// What lies beside the running program in a build tree, and in libexec/glintar of the same prefix once installed.
class InstalledBundle final : public Bundle {
public:
    /// `configServer` as in `Bundle::configServer`, already checked. What lies in the folder `replacements` stands in
    /// place of shipped files of that name.
    explicit InstalledBundle(std::string configServer, std::filesystem::path replacements = {});

    std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) const override;
    std::string version() const override;
    std::string configServer() const override { return configServer_; }

    /// A program that belongs to this one; none when it is not there.
    [[nodiscard]] static std::optional<std::filesystem::path> program(std::string_view name);

private:
    std::string configServer_;
    std::filesystem::path replacements_;
};

}  // namespace glintar::platform
