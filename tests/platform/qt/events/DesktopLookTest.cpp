#include "platform/qt/events/DesktopLook.h"

#include <gtest/gtest.h>

namespace glintar::platform {
namespace {

TEST(DesktopLookTest, KnowsTheDesktopsThatQtWouldLoadGtkFor) {
    struct Row {
        const char* desktops;
        const char* platformTheme;
        DesktopSettingsPolicy expected;
    };
    constexpr DesktopSettingsPolicy kGtk{.isSettingsAware = false, .hasPortalFont = true};
    constexpr DesktopSettingsPolicy kOther{.hasPortalFont = true};
    const Row rows[] = {
        {"GNOME", "", kGtk},
        {"ubuntu:GNOME", "", kGtk},
        {"Budgie:GNOME", "", kGtk},
        {"XFCE", "", kGtk},
        {"X-Cinnamon", "", kGtk},
        {"MATE", "", kGtk},
        {"xfce", "", kGtk},
        {"XFCE", "qt6ct", {.isSettingsAware = false, .hasPortalFont = false}},
        {"KDE", "", {.followsColors = true}},
        {"LXQt", "", {}},
        {"sway", "", kOther},
        {"", "", kOther},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(desktopSettingsPolicy(row.desktops, row.platformTheme), row.expected) << row.desktops;
    }
}

TEST(DesktopLookTest, ReadsFontsAsGtkNamesThem) {
    struct Row {
        const char* name;
        QStringList families;
        double points;
        int pixels;
        int weight;
        bool isItalic;
    };
    const Row rows[] = {
        {"Cantarell 11", {"Cantarell"}, 11, -1, QFont::Normal, false},
        {"Noto Sans Bold Italic 10.5", {"Noto Sans"}, 10.5, -1, QFont::Bold, true},
        {"DejaVu Sans Condensed 9", {"DejaVu Sans Condensed"}, 9, -1, QFont::Normal, false},
        {"Inter Semi-Bold, sans-serif 14px", {"Inter Semi-Bold", "sans-serif"}, -1, 14, QFont::Normal, false},
        {" Adwaita Sans 11 @wght=450", {"Adwaita Sans"}, 11, -1, QFont::Normal, false},
        {"Source Code Pro Medium 12", {"Source Code Pro"}, 12, -1, QFont::Medium, false},
    };
    for (const auto& row : rows) {
        const auto font = fontNamed(row.name);
        ASSERT_TRUE(font) << row.name;
        EXPECT_EQ(font->families(), row.families) << row.name;
        EXPECT_EQ(font->pointSizeF(), row.points) << row.name;
        EXPECT_EQ(font->pixelSize(), row.pixels) << row.name;
        EXPECT_EQ(font->weight(), row.weight) << row.name;
        EXPECT_EQ(font->italic(), row.isItalic) << row.name;
    }
    for (const auto* name : {"", "Cantarell", "11", " 11", "Cantarell nan", "Cantarell 0", "Cantarell 1e9", ", 11"}) {
        EXPECT_FALSE(fontNamed(name)) << name;
    }
}

}  // namespace
}  // namespace glintar::platform
