#include "pictures/Sheets.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "support/FolderBundle.h"

#include <QGuiApplication>
#include <QRect>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace glintar::test {
namespace {

/// By how much two pictures of one size differ where they differ most: in a tile of 8 by 8 pixels, on average over its
/// pixels, in the channel that differs most.
struct Difference {
    double change = 0;  ///< whichever way
    double shift = 0;   ///< of the colour as a whole
    QPoint tile;        ///< that of the change
};

Difference differenceOf(const QImage& before, const QImage& after) {
    static constexpr int kTile = 8;
    Difference worst;
    for (int top = 0; top < before.height(); top += kTile / 2) {
        for (int left = 0; left < before.width(); left += kTile / 2) {
            std::array<int, 3> apart{}, shift{};
            for (int y = top; y < std::min(top + kTile, before.height()); ++y) {
                for (int x = left; x < std::min(left + kTile, before.width()); ++x) {
                    const QRgb from = before.pixel(x, y), to = after.pixel(x, y);
                    const std::array by{qRed(to) - qRed(from), qGreen(to) - qGreen(from), qBlue(to) - qBlue(from)};
                    for (std::size_t i = 0; i < by.size(); ++i) {
                        apart[i] += std::abs(by[i]);
                        shift[i] += by[i];
                    }
                }
            }
            if (const double change = double(std::ranges::max(apart)) / (kTile * kTile); change > worst.change) {
                worst.change = change;
                worst.tile = {left, top};
            }
            const auto [least, most] = std::ranges::minmax(shift);
            worst.shift = std::max(worst.shift, double(std::max(-least, most)) / (kTile * kTile));
        }
    }
    return worst;
}

class Pictures : public testing::TestWithParam<Sheet> {};

TEST_P(Pictures, LookAsTheirReference) {
    const auto& [name, draw, appearance, scale] = GetParam();
    const FolderBundle bundle;
    const QImage actual = GetParam().picture(platform::QtGraphics(bundle));
    const QString path = GetParam().referencePath();
    const QImage reference = QImage(path).convertToFormat(QImage::Format_RGB32);
    const bool isOneSize = reference.size() == actual.size();
    const auto difference = isOneSize ? differenceOf(reference, actual) : Difference{};
    // Measured: every pixel three levels off, this way or that, makes a change of 3.0 and a shift of 2.2; a text that
    // moved by one pixel or a colour that moved by a tenth makes a change of 4.1 at least or, as one of colour, a shift
    // of 2.8.
    if (isOneSize && difference.change <= 3.5 && difference.shift <= 2.5) {
        return;
    }
    const QString file = QCoreApplication::applicationDirPath() + '/' + QString::fromStdString(name) + "-actual.png";
    actual.save(file);
    FAIL() << fmt::format(
        "{} looks different; if it should, run ./test pictures renew\nreference  {}\nactual     {}\n"
        "{} by {} pixels instead of {} by {}, change {:.2f}, shift {:.2f}, most at {},{}",
        name, path.toStdString(), file.toStdString(), actual.width(), actual.height(), reference.width(),
        reference.height(), difference.change, difference.shift, difference.tile.x(), difference.tile.y());
}

INSTANTIATE_TEST_SUITE_P(Sheets, Pictures, testing::ValuesIn(sheets()), [](const testing::TestParamInfo<Sheet>& sheet) {
    std::string name = sheet.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
});

int renew() {
    const FolderBundle bundle;
    const platform::QtGraphics graphics(bundle);
    return std::ranges::all_of(sheets(),
                               [&](const Sheet& sheet) {
                                   fmt::print("{}\n", sheet.referencePath().toStdString());
                                   return sheet.picture(graphics).save(sheet.referencePath());
                               })
               ? 0
               : 1;
}

}  // namespace
}  // namespace glintar::test

/// With `--renew` the references are drawn anew, on purpose, and nothing is tested.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("FONTCONFIG_FILE", GLINTAR_PICTURES "/fonts.conf");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    for (const char* name : {"QT_SCALE_FACTOR", "QT_FONT_DPI", "QT_QPA_PLATFORMTHEME", "FREETYPE_PROPERTIES"}) {
        qunsetenv(name);
    }
    const QGuiApplication application(argc, argv);
    return argc > 1 && std::string_view(argv[1]) == "--renew" ? glintar::test::renew() : RUN_ALL_TESTS();
}
