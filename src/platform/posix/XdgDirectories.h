#pragma once

#include "platform/Directories.h"

namespace glintar::platform {

/// The user's directories by the XDG Base Directory rules: `glintar` inside XDG_DATA_HOME for application support and
/// documents, inside XDG_CACHE_HOME for caches. A variable that holds no absolute path counts as unset.
class XdgDirectories final : public Directories {
public:
    std::optional<std::filesystem::path> applicationSupport() const override;
    std::optional<std::filesystem::path> documents() const override;
    std::optional<std::filesystem::path> caches() const override;

    /// Where the preference file lies, inside XDG_CONFIG_HOME; not made. None when there is no home directory.
    [[nodiscard]] static std::optional<std::filesystem::path> configuration();
};

}  // namespace glintar::platform
