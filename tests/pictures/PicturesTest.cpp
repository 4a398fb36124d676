#include "config/Settings.h"
#include "floating/FloatingView.h"
#include "menubar/CoinPill.h"
#include "menubar/GasPill.h"
#include "menubar/ProgressImage.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/graphics/QtImage.h"
#include "platform/virtual/VirtualStores.h"
#include "presenter/StatusLine.h"
#include "support/FolderBundle.h"

#include <QGuiApplication>
#include <QPainter>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace glintar::test {
namespace {

using market::MarketDataMap;
using menubar::Look;
using platform::Appearance;
using platform::Graphics;
using platform::ImagePtr;
using platform::VirtualPreferences;
using Row = std::vector<ImagePtr>;

/// Rows of pictures under each other, in points from the top left.
QImage arranged(const std::vector<Row>& rows, const QColor& ground, double gap, double scale) {
    double width = 0;
    double height = gap;
    std::vector<double> heights;
    for (const Row& row : rows) {
        double end = gap;
        heights.push_back(0);
        for (const auto& image : row) {
            end += std::ceil(image->size().width) + gap;
            heights.back() = std::max(heights.back(), std::ceil(image->size().height));
        }
        width = std::max(width, end);
        height += heights.back() + gap;
    }
    QImage sheet(platform::pixelSize({width, height}, scale), QImage::Format_RGB32);
    sheet.fill(ground);
    QPainter painter(&sheet);
    double top = gap;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        double left = gap;
        for (const auto& image : rows[i]) {
            QImage pixels = platform::pixelsAt(*image, image->size(), scale);
            pixels.setDevicePixelRatio(1);
            painter.drawImage(QPointF(left * scale, top * scale), pixels);
            left += std::ceil(image->size().width) + gap;
        }
        top += heights[i] + gap;
    }
    return sheet;
}

/// Rises to its middle and falls below where it began, or the other way round.
std::vector<double> prices(bool isRising) {
    std::vector<double> values;
    for (int hour = 0; hour < 24; ++hour) {
        const double trend = isRising ? hour : -hour;
        values.push_back(100 + trend + 6 * std::sin(hour * 0.9));
    }
    return values;
}

market::UnifiedMarketData quote(double price, double change24h) {
    return {.price = price,
            .change24h = change24h,
            .high24h = price * 1.03,
            .low24h = price * 0.97,
            .sparkline = prices(change24h >= 0)};
}

config::Coin coin(std::string displayName, std::optional<double> referencePrice = {}) {
    return {.id = displayName, .displayName = displayName, .apiId = displayName, .referencePrice = referencePrice};
}

void show(VirtualPreferences& preferences, bool change, bool highLow, bool sparkline) {
    preferences.setBoolean(config::kShowChange, change);
    preferences.setBoolean(config::kShowHighLow, highLow);
    preferences.setBoolean(config::kShowSparkline, sparkline);
    preferences.setBoolean(config::kShowGasFee, true);
}

QImage pills(const Graphics& graphics, Appearance appearance, double scale) {
    const Look look{appearance, scale};
    const ImagePtr icon = graphics.image("AppIcon");
    VirtualPreferences preferences;
    const auto pill = [&](const config::Coin& shown, const market::UnifiedMarketData& its, const ImagePtr& head) {
        const auto line =
            presenter::composeStatusLine(config::Settings::load(preferences), {shown}, {{shown.apiId, its}}, {}, {});
        return renderCoinPill(graphics, line.coins.front(), head, look);
    };
    const auto fee = [&](int source, double its) {
        preferences.setInteger(config::kGasSource, source);
        const auto line = presenter::composeStatusLine(config::Settings::load(preferences), {},
                                                       {{"ethereum", quote(3'105.2, 0)}}, its, {});
        return renderGasPill(graphics, *line.gas, look);
    };
    const auto countdown = [&](const char* source, double elapsed) {
        return menubar::Countdown(graphics).pictureAt(elapsed, source, look);
    };
    show(preferences, true, true, true);
    std::vector<Row> rows{{pill(coin("BTC"), quote(64'012.55, 1.2), icon)}, {fee(0, 12.5)}};
    if (scale > 1) {  // not all of it, which would only make large files
        rows[1].push_back(countdown("coingecko", 0.35));
    } else {
        rows[0].push_back(pill(coin("ADA", 0.5), quote(0.4512, -12.34), icon));
        rows[1].insert(rows[1].end(), {fee(1, 20), fee(0, 50)});
        rows.push_back({countdown("coingecko", 0), countdown("coingecko", 0.35), countdown("binance", 0.8),
                        countdown("gate", 1), countdown("unknown", 0.6)});
        show(preferences, true, false, false);
        rows.push_back({pill(coin("ETH"), quote(3'105.2, -2.5), icon)});
        show(preferences, false, true, true);
        rows.back().push_back(pill(coin("ETH"), quote(3'105.2, 0), icon));
        show(preferences, false, false, false);
        rows.push_back({pill(coin("BTC", 61'500), quote(64'012.55, 1), icon)});
        for (const char* name : {"比特币", "🚀 Moon", "بيتكوين", "x"}) {
            rows.back().push_back(pill(coin(name), quote(1.5, 1), nullptr));
        }
        show(preferences, false, true, false);
        rows.push_back({pill(coin("BTC", 1'600'000), quote(64'012.55, 0), icon)});
        show(preferences, false, false, true);
        rows.back().push_back(pill(coin("BTC"), {.price = 1, .sparkline = std::vector{1.0}}, icon));
    }
    const bool isDark = appearance == Appearance::Dark;
    return arranged(rows, isDark ? QColor(0x20, 0x22, 0x26) : QColor(0xf4, 0xf4, 0xf4), 8, scale);
}

ImagePtr panel(const Graphics& graphics, const floating::FloatingState& state,
               const floating::FloatingView::Surroundings& surroundings, double timeProgress) {
    floating::FloatingView view(graphics);
    view.update(state, surroundings, timeProgress);
    return view.picture();
}

QImage panels(const Graphics& graphics, Appearance appearance, double scale) {
    floating::FloatingState state{
        .currentCoins = {coin("bitcoin", 61'500), coin("eth"), coin("比特币"), coin("DOGE", 0.5), coin("🚀 Moon")},
        .marketData = {{"bitcoin", quote(64'012.55, 1.2)},
                       {"eth", quote(3'105.2, -2.5)},
                       {"比特币", quote(1, 0)},
                       {"DOGE", quote(0.0825, -12.34)},
                       {"🚀 Moon", quote(0.5, 104)},
                       {"ethereum", quote(3'105.2, 0)}},
        .currentGasPrice = 9.5};
    const QColor ground = appearance == Appearance::Dark ? QColor(0x42, 0x50, 0x60) : QColor(0xc8, 0xd2, 0xdc);
    static constexpr double kGap = 4;
    state.settings = {.showChange24h = true, .showHighLow24h = true, .showSparkline = true, .showGasFee = true};
    if (scale > 1) {
        state.currentCoins.resize(1);
    }
    const ImagePtr plate = panel(graphics, state, {appearance, scale}, 0.7);
    if (scale > 1) {
        return arranged({{plate}}, ground, kGap, scale);
    }

    state.settings.gasSource = 1;
    state.currentCoins.resize(1);
    state.currentGasPrice = 50;
    state.sourceID = "binance";
    state.isTransparent = true;
    const ImagePtr transparent = panel(graphics, state, {appearance, scale}, 0.6);

    state.settings = {.showGasFee = true, .gasSource = 1};
    state.sourceID = "my exchange";
    state.currentGasPrice = 20;
    const ImagePtr outlined = panel(graphics, state, {appearance, scale, false}, 0.2);
    state.isTransparent = false;
    const ImagePtr rimmed = panel(graphics, state, {appearance, scale, false}, 0.2);
    const ImagePtr empty = panel(graphics, {}, {appearance, scale}, 1);
    return arranged({{plate}, {transparent}, {outlined}, {rimmed}, {empty}}, ground, kGap, scale);
}

/// Several things that the program draws, side by side on one picture.
struct Sheet {
    std::string name;
    QImage (*draw)(const platform::Graphics&, platform::Appearance, double scale);
    platform::Appearance appearance;
    double scale;

    /// With the artwork and the quotes of the test; `graphics` draws through `QtGraphics`.
    [[nodiscard]] QImage picture(const platform::Graphics& graphics) const { return draw(graphics, appearance, scale); }

    /// Of the picture that it should look like.
    [[nodiscard]] QString referencePath() const {
        return QStringLiteral(GLINTAR_PICTURES "/references/%1.png").arg(QString::fromStdString(name));
    }
};

/// Light and dark; with two pixels to a point only some, since they make large files.
std::vector<Sheet> sheets() {
    return {{"pills-light-1x", &pills, Appearance::Light, 1},   {"pills-light-2x", &pills, Appearance::Light, 2},
            {"pills-dark-1x", &pills, Appearance::Dark, 1},     {"pills-dark-2x", &pills, Appearance::Dark, 2},
            {"panels-light-1x", &panels, Appearance::Light, 1}, {"panels-light-2x", &panels, Appearance::Light, 2},
            {"panels-dark-1x", &panels, Appearance::Dark, 1}};
}

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

TEST(Pictures, LookAsTheirReference) {
    const FolderBundle bundle;
    for (const Sheet& sheet : sheets()) {
        const QImage actual = sheet.picture(platform::QtGraphics(bundle));
        const QString path = sheet.referencePath();
        const QImage reference = QImage(path).convertToFormat(QImage::Format_RGB32);
        const bool isOneSize = reference.size() == actual.size();
        const auto difference = isOneSize ? differenceOf(reference, actual) : Difference{};
        // Measured: every pixel three levels off, this way or that, makes a change of 3.0 and a shift of 2.2; a text
        // that moved by one pixel or a colour that moved by a tenth makes a change of 4.1 at least or, as one of
        // colour, a shift of 2.8.
        if (isOneSize && difference.change <= 3.5 && difference.shift <= 2.5) {
            continue;
        }
        const QString file =
            QCoreApplication::applicationDirPath() + '/' + QString::fromStdString(sheet.name) + "-actual.png";
        actual.save(file);
        ADD_FAILURE() << fmt::format(
            "{} looks different; if it should, run ./test pictures renew\nreference  {}\nactual     {}\n"
            "{} by {} pixels instead of {} by {}, change {:.2f}, shift {:.2f}, most at {},{}",
            sheet.name, path.toStdString(), file.toStdString(), actual.width(), actual.height(), reference.width(),
            reference.height(), difference.change, difference.shift, difference.tile.x(), difference.tile.y());
    }
}

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
