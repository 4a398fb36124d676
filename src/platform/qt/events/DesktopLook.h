#pragma once

#include "platform/Graphics.h"

#include <QFont>
#include <QPalette>

#include <optional>
#include <string_view>

namespace glintar::platform {

/// What Qt takes over of a desktop's look by itself, and what has to be asked for.
struct DesktopSettingsPolicy {
    /// For QApplication::setDesktopSettingsAware, before the application is made. False on desktops that are built on
    /// GTK: Qt would load all of GTK to look like them, which doubles the time to start and the memory.
    bool isSettingsAware = true;

    /// Whether the desktop's font is the one that its portal names; elsewhere Qt knows it by itself.
    bool hasPortalFont = false;

    /// Whether Qt follows the desktop's colours by itself, if perhaps a moment later.
    bool followsColors = false;

    bool operator==(const DesktopSettingsPolicy&) const = default;
};

/// `desktops` and `platformTheme` are the values of XDG_CURRENT_DESKTOP and QT_QPA_PLATFORMTHEME. By the latter the
/// user chooses where Qt takes its look from, and Qt heeds it in any case.
[[nodiscard]] DesktopSettingsPolicy desktopSettingsPolicy(std::string_view desktops,
                                                          std::string_view platformTheme = {});

/// Dark when text is lighter than what it stands on.
[[nodiscard]] Appearance appearanceOf(const QPalette& palette);

/// Qt's own colours, for desktops whose colours Qt cannot take over.
[[nodiscard]] QPalette plainPalette(Appearance appearance);

/// Reads a font as GTK's settings name it, such as "Noto Sans Bold 10.5" or "Cantarell, sans-serif 14px". None without
/// a size or a family.
[[nodiscard]] std::optional<QFont> fontNamed(std::string_view name);

}  // namespace glintar::platform
