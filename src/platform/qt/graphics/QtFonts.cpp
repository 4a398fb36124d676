#include "platform/qt/graphics/QtFonts.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>

namespace glintar::platform {

namespace {

constexpr double kLargestFont = 512;
constexpr qsizetype kLongestText = 2'048;  // UTF-16 units
constexpr std::size_t kKeptDigitWidths = 64;

/// One line without anything that moves the pen by itself.
QString lineOf(std::string_view text) {
    QString line = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    line.truncate(kLongestText);
    for (QChar& character : line) {
        const auto category = character.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph) {
            character = u' ';
        }
    }
    return line;
}

bool isDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

/// A part of the digit before it, such as the frame of a key cap.
bool isAttached(QChar character) {
    return character.isMark() || character.unicode() == 0x200d;
}

/// Whether a font shows it as it is shaped: letters without marks, digits, punctuation and signs, which have one glyph
/// each where nothing is kerned.
bool isSimple(const QString& text) {
    return std::ranges::all_of(text, [](QChar character) {
        const auto unicode = character.unicode();
        return unicode < 0x300 || (unicode >= 0x2010 && unicode < 0x2028) || (unicode >= 0x20a0 && unicode < 0x20d0) ||
               (unicode >= 0x2190 && unicode < 0x2300) || (unicode >= 0x25a0 && unicode < 0x2600);
    });
}

/// Whether its characters stand from left to right in the order of the text.
bool runsToTheRight(const QString& text) {
    return std::ranges::none_of(text, [](QChar character) {
        switch (character.direction()) {
            case QChar::DirR:
            case QChar::DirAL:
            case QChar::DirAN:
            case QChar::DirRLE:
            case QChar::DirRLO:
            case QChar::DirRLI:
                return true;
            default:
                // The first halves of U+10800 to U+10FFF and U+1E800 to U+1EFFF, the other blocks of such scripts.
                return (character.unicode() & 0xfffe) == 0xd802 || (character.unicode() & 0xfffe) == 0xd83a;
        }
    });
}

}  // namespace

QtFonts::QtFonts()
    : ownFamilies_(QGuiApplication::font().families()),
      families_(ownFamilies_),
      fixedFamilies_(QFontDatabase::systemFont(QFontDatabase::FixedFont).families()) {}

void QtFonts::setFamily(const QString& family) {
    const std::scoped_lock lock(mutex_);
    families_ = QStringList(family) + ownFamilies_;
    families_.removeDuplicates();  // a longer list would be another font, loaded anew
}

TextLine QtFonts::layOut(std::string_view text, const Font& font) const {
    const double size = font.size > 0 ? std::min(font.size, kLargestFont) : 1;
    const int pixels = std::max(1, static_cast<int>(std::lround(size)));
    TextLine line{.font = makeFont(font, pixels), .unit = size / pixels};
    const QString whole = lineOf(text);
    if (!line.font.kerning() && isSimple(whole)) {
        line.font.setStyleStrategy(QFont::StyleStrategy(line.font.styleStrategy() | QFont::PreferNoShaping));
    }
    const QFontMetricsF metrics(line.font);
    const auto add = [&](const QString& part, double shift, double advance) {
        line.runs.push_back({part, line.width + shift});
        line.width += advance;
    };
    const DigitWidths digits = font.digits == Font::Digits::EqualWidth ? digitWidths(line.font) : DigitWidths{};
    if (digits.equal || !runsToTheRight(whole)) {
        add(whole, 0, metrics.horizontalAdvance(whole));
    } else {
        qsizetype start = 0;  // of what goes together
        const auto flush = [&](qsizetype end) {
            if (end > start) {
                const QString part = whole.mid(start, end - start);
                add(part, 0, metrics.horizontalAdvance(part));
            }
        };
        for (qsizetype at = 0; at < whole.size(); ++at) {
            if (isDigit(whole[at]) && (at + 1 == whole.size() || !isAttached(whole[at + 1]))) {
                flush(at);
                const double width = digits.widths[whole[at].unicode() - u'0'];
                add(whole.mid(at, 1), (digits.widest - width) / 2, digits.widest);
                start = at + 1;
            }
        }
        flush(whole.size());
    }
    line.width *= line.unit;
    return line;
}

QFont QtFonts::makeFont(const Font& font, int pixels) const {
    QStringList families;
    {
        const std::scoped_lock lock(mutex_);
        families = font.digits == Font::Digits::Monospaced ? fixedFamilies_ : families_;
    }
    QFont made(families);
    made.setPixelSize(pixels);
    made.setWeight(static_cast<QFont::Weight>(font.weight));
    // Pairs of digits may be kerned, as "11" is in Liberation Sans.
    made.setKerning(font.digits == Font::Digits::AsDesigned);
    // Widths that are the same at every ratio, and stems that stay sharp in height.
    made.setHintingPreference(QFont::PreferVerticalHinting);
    // Coloured fringes are wrong on pictures whose ground is not known yet.
    made.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return made;
}

QtFonts::DigitWidths QtFonts::digitWidths(const QFont& font) const {
    const std::tuple key(font.families(), font.pixelSize(), static_cast<int>(font.weight()));
    {
        const std::scoped_lock lock(mutex_);
        if (const auto known = digits_.find(key); known != digits_.end()) {
            return known->second;
        }
    }
    DigitWidths digits;
    const QFontMetricsF metrics(font);
    for (char16_t digit = 0; digit < 10; ++digit) {
        digits.widths[digit] = metrics.horizontalAdvance(QChar(u'0' + digit));
    }
    const auto [narrowest, widest] = std::ranges::minmax(digits.widths);
    digits.widest = widest;
    digits.equal = widest - narrowest < 0.01;
    const std::scoped_lock lock(mutex_);
    if (digits_.size() >= kKeptDigitWidths) {
        digits_.clear();
    }
    digits_[key] = digits;
    return digits;
}

}  // namespace glintar::platform
