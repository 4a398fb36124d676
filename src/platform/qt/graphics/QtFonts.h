#pragma once

#include "platform/Graphics.h"

#include <QFont>
#include <QString>
#include <QStringList>

#include <array>
#include <map>
#include <mutex>
#include <string_view>
#include <tuple>
#include <vector>

namespace glintar::platform {

/// One line of text, laid out: what is drawn where on the base line. Texts with digits of equal width are not kerned,
/// so that no digit moves; that also spares reading the shaping tables of fonts, 0.1 MB a thread.
struct TextLine {
    struct Run {
        QString text;
        double x = 0;  ///< of its origin, in units of `font`
    };
    std::vector<Run> runs;
    QFont font;
    double unit = 1;   ///< points to a unit of `font`, which has a whole number of them to an em
    double width = 0;  ///< points
};

/// The desktop's fonts. Made on the main thread once there is a `QGuiApplication`, then used by any thread.
class QtFonts {
public:
    QtFonts();

    /// Draws text in the family instead of Qt's own choice, which remains for what the family lacks.
    void setFamily(const QString& family);

    [[nodiscard]] TextLine layOut(std::string_view text, const Font& font) const;

private:
    /// How wide a font's digits are, in units of it.
    struct DigitWidths {
        std::array<double, 10> widths{};
        double widest = 0;
        bool equal = true;
    };

    QFont makeFont(const Font& font, int pixels) const;
    DigitWidths digitWidths(const QFont& font) const;

    mutable std::mutex mutex_;
    QStringList ownFamilies_;  // Qt's own choice
    QStringList families_;
    QStringList fixedFamilies_;
    // A QFont belongs to the thread that uses it, so what is kept are numbers.
    mutable std::map<std::tuple<QStringList, int, int>, DigitWidths> digits_;  // by families, pixels and weight
};

}  // namespace glintar::platform
