#include "platform/qt/events/DesktopLook.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace glintar::platform {

namespace {

QString qtText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

struct Style {
    const char* word;
    QFont::Weight weight;
};

/// Pango's words for styles, of which those for width count as part of the family, as in "DejaVu Sans Condensed".
constexpr std::array kStyles{Style{"Thin", QFont::Thin},
                             Style{"Ultra-Light", QFont::ExtraLight},
                             Style{"Extra-Light", QFont::ExtraLight},
                             Style{"Light", QFont::Light},
                             Style{"Semi-Light", QFont::Light},
                             Style{"Book", QFont::Normal},
                             Style{"Regular", QFont::Normal},
                             Style{"Normal", QFont::Normal},
                             Style{"Medium", QFont::Medium},
                             Style{"Demi-Bold", QFont::DemiBold},
                             Style{"Semi-Bold", QFont::DemiBold},
                             Style{"Bold", QFont::Bold},
                             Style{"Ultra-Bold", QFont::ExtraBold},
                             Style{"Extra-Bold", QFont::ExtraBold},
                             Style{"Heavy", QFont::Black},
                             Style{"Black", QFont::Black}};

/// Gives the font the style; false when the word is none.
bool takeStyle(QFont& font, const QString& word) {
    const auto is = [&](const char* known) { return word.compare(QLatin1String(known), Qt::CaseInsensitive) == 0; };
    if (is("Italic") || is("Oblique")) {
        font.setItalic(true);
        return true;
    }
    const auto found = std::ranges::find_if(kStyles, is, &Style::word);
    if (found != kStyles.end()) {
        font.setWeight(found->weight);
    }
    return found != kStyles.end();
}

}  // namespace

DesktopSettingsPolicy desktopSettingsPolicy(std::string_view desktops, std::string_view platformTheme) {
    const QStringList onGtk{"GNOME", "X-Cinnamon", "Cinnamon", "MATE",     "XFCE",
                            "Unity", "LXDE",       "Budgie",   "Pantheon", "GNOME-Classic"};
    DesktopSettingsPolicy policy{.hasPortalFont = platformTheme.empty()};
    for (const QString& name : qtText(desktops).split(':')) {
        const bool isPlasma = name.compare(u"KDE", Qt::CaseInsensitive) == 0;
        if (onGtk.contains(name, Qt::CaseInsensitive)) {
            policy.isSettingsAware = false;
        } else if (isPlasma || name.compare(u"LXQt", Qt::CaseInsensitive) == 0) {
            return {.isSettingsAware = true, .hasPortalFont = false, .followsColors = isPlasma};
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
    // What follows an "@" are variations of the font.
    QStringList words = qtText(name).section('@', 0, 0).simplified().split(' ');
    QString number = words.takeLast();
    const bool isPixels = number.endsWith(u"px");
    number.chop(isPixels ? 2 : 0);
    const double size = number.toDouble();
    QFont font;
    while (words.size() > 1 && takeStyle(font, words.last())) {
        words.removeLast();
    }
    QStringList families;
    for (const QString& family : words.join(' ').split(',')) {
        families += family.trimmed();
    }
    families.removeAll(QString());
    if (families.isEmpty() || !(size >= 1 && size <= 200)) {
        return std::nullopt;
    }
    font.setFamilies(families);
    isPixels ? font.setPixelSize(static_cast<int>(size)) : font.setPointSizeF(size);
    return font;
}

}  // namespace glintar::platform
