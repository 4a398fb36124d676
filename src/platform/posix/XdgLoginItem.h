#pragma once

#include "platform/LoginItem.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace glintar::platform {

class Files;

/// The login item as an entry of the user's autostart folder (freedesktop.org, "Desktop Application Autostart
/// Specification" 0.5): `org.glintar.Glintar.desktop`. An entry that is hidden, switched off or kept for other desktops
/// counts as none.
class XdgLoginItem final : public LoginItem {
public:
    /// `program` is the path that the entry starts; `desktops` are the names in XDG_CURRENT_DESKTOP, with colons
    /// between them.
    XdgLoginItem(Files& files, std::filesystem::path program, std::string_view desktops);

    bool isEnabled() const override;
    Outcome registerItem() override;
    Outcome unregisterItem() override;
    void repair() override;

private:
    Files& files_;
    std::filesystem::path program_;
    std::string desktops_;
};

}  // namespace glintar::platform
