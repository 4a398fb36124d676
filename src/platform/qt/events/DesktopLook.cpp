#include "platform/qt/events/DesktopLook.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace glintar::platform {

namespace {

char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isSame(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowered, lowered);
}

bool isOneOf(std::string_view word, std::span<const std::string_view> words) {
    return std::ranges::any_of(words, [&](std::string_view known) { return isSame(word, known); });
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// The last word, which is cut off; empty when there is but one.
std::string_view lastWord(std::string_view& text) {
    const auto blank = text.find_last_of(' ');
    if (blank == std::string_view::npos) {
        return {};
    }
    const auto word = text.substr(blank + 1);
    text = trimmed(text.substr(0, blank));
    return word;
}

/// Pango's words for styles, of which those for width count as part of the family, as in "DejaVu Sans Condensed".
constexpr std::array<std::pair<std::string_view, QFont::Weight>, 16> kWeights{{
    {"Thin", QFont::Thin},
    {"Ultra-Light", QFont::ExtraLight},
    {"Extra-Light", QFont::ExtraLight},
    {"Light", QFont::Light},
    {"Semi-Light", QFont::Light},
    {"Book", QFont::Normal},
    {"Regular", QFont::Normal},
    {"Normal", QFont::Normal},
    {"Medium", QFont::Medium},
    {"Demi-Bold", QFont::DemiBold},
    {"Semi-Bold", QFont::DemiBold},
    {"Bold", QFont::Bold},
    {"Ultra-Bold", QFont::ExtraBold},
    {"Extra-Bold", QFont::ExtraBold},
    {"Heavy", QFont::Black},
    {"Black", QFont::Black},
}};

/// Gives the font the style; false when the word is none.
bool takeStyle(QFont& font, std::string_view word) {
    if (isSame(word, "Italic") || isSame(word, "Oblique")) {
        font.setItalic(true);
        return true;
    }
    const auto found = std::ranges::find_if(kWeights, [&](const auto& known) { return isSame(word, known.first); });
    if (found == kWeights.end()) {
        return false;
    }
    font.setWeight(found->second);
    return true;
}

}  // namespace

DesktopSettingsPolicy desktopSettingsPolicy(std::string_view desktops, std::string_view platformTheme) {
    static constexpr std::array<std::string_view, 10> kOnGtk{
        "GNOME", "X-Cinnamon", "Cinnamon", "MATE", "XFCE", "Unity", "LXDE", "Budgie", "Pantheon", "GNOME-Classic"};
    static constexpr std::array<std::string_view, 2> kOnQt{"KDE", "LXQt"};
    DesktopSettingsPolicy policy{.hasPortalFont = platformTheme.empty()};
    while (!desktops.empty()) {
        const auto name = desktops.substr(0, desktops.find(':'));
        desktops.remove_prefix(std::min(name.size() + 1, desktops.size()));
        if (isOneOf(name, kOnGtk)) {
            policy.isSettingsAware = false;
        } else if (isOneOf(name, kOnQt)) {
            return {.isSettingsAware = true, .hasPortalFont = false, .followsColors = isSame(name, "KDE")};
        }
    }
    return policy;
}

Appearance appearanceOf(const QPalette& palette) {
    const int text = palette.color(QPalette::Active, QPalette::WindowText).lightness();
    return text > palette.color(QPalette::Active, QPalette::Window).lightness() ? Appearance::Dark : Appearance::Light;
}

QPalette plainPalette(Appearance appearance) {
    struct Row {
        QPalette::ColorRole role;
        QRgb light, dark;
    };
    constexpr std::array kRows{
        Row{QPalette::Window, 0xefefef, 0x2d2d2d},      Row{QPalette::WindowText, 0x1a1a1a, 0xf0f0f0},
        Row{QPalette::Base, 0xffffff, 0x1f1f1f},        Row{QPalette::AlternateBase, 0xf5f5f5, 0x282828},
        Row{QPalette::Text, 0x1a1a1a, 0xf0f0f0},        Row{QPalette::PlaceholderText, 0x808080, 0x8c8c8c},
        Row{QPalette::Button, 0xefefef, 0x383838},      Row{QPalette::ButtonText, 0x1a1a1a, 0xf0f0f0},
        Row{QPalette::BrightText, 0xffffff, 0xffffff},  Row{QPalette::Light, 0xffffff, 0x4c4c4c},
        Row{QPalette::Midlight, 0xf7f7f7, 0x424242},    Row{QPalette::Mid, 0xb8b8b8, 0x262626},
        Row{QPalette::Dark, 0x9f9f9f, 0x1c1c1c},        Row{QPalette::Shadow, 0x767676, 0x101010},
        Row{QPalette::Highlight, 0x308cc6, 0x2f6fb3},   Row{QPalette::HighlightedText, 0xffffff, 0xffffff},
        Row{QPalette::Link, 0x0057ae, 0x5ea9f0},        Row{QPalette::LinkVisited, 0x7f3f98, 0xb58adb},
        Row{QPalette::ToolTipBase, 0xffffdc, 0x3a3a3a}, Row{QPalette::ToolTipText, 0x1a1a1a, 0xf0f0f0},
    };
    const bool isDark = appearance == Appearance::Dark;
    QPalette palette;
    for (const auto& [role, light, dark] : kRows) {
        palette.setColor(role, QColor::fromRgb(isDark ? dark : light));
    }
    const QColor faint = QColor::fromRgb(isDark ? 0x7f7f7f : 0xa0a0a0);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor::fromRgb(isDark ? 0x505050 : 0x919191));
    return palette;
}

std::optional<QFont> fontNamed(std::string_view name) {
    name = trimmed(name.substr(0, name.find('@')));  // what follows are variations of the font
    auto number = lastWord(name);
    const bool isPixels = number.ends_with("px");
    number.remove_suffix(isPixels ? 2 : 0);
    double size = 0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), size);
    if (number.empty() || read.ec != std::errc() || read.ptr != number.data() + number.size() ||
        !(size >= 1 && size <= 200)) {
        return std::nullopt;
    }
    QFont font;
    for (auto rest = name; takeStyle(font, lastWord(rest));) {
        name = rest;
    }
    QStringList families;
    while (!name.empty()) {
        const auto family = name.substr(0, name.find(','));
        name.remove_prefix(std::min(family.size() + 1, name.size()));
        if (const auto text = trimmed(family); !text.empty()) {
            families.append(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
        }
    }
    if (families.isEmpty()) {
        return std::nullopt;
    }
    font.setFamilies(families);
    isPixels ? font.setPixelSize(static_cast<int>(size)) : font.setPointSizeF(size);
    return font;
}

}  // namespace glintar::platform
