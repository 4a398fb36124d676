#include "floating/FloatingView.h"
#include "floating/PanelLayout.h"
#include "platform/virtual/VirtualGraphics.h"
#include "support/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace glintar::floating {
namespace {

using platform::Drawn;
using platform::Point;
using platform::Rect;
using platform::Size;
using Kind = Drawn::Kind;

class FloatingViewTest : public testing::Test {
protected:
    PanelLayout layOut(double scale = 1, double margin = 0) const {
        return layOutPanel(composeContent(state, platform::Appearance::Dark), graphics, PixelGrid(scale),
                           margin);
    }
    void showTwoCoins() {
        state.settings.showChange24h = true;
        state.settings.showHighLow24h = true;
        state.settings.showSparkline = true;
        state.currentCoins = {test::coin("Bitcoin", "bitcoin", 60000), test::coin("ETH", "ethereum")};
        state.marketData["bitcoin"] = {.price = 64250.5,
                                       .change24h = 2.5,
                                       .high24h = 71234.5,
                                       .low24h = 69000,
                                       .sparkline = std::vector{1.0, 3.0, 2.0}};
        state.marketData["ethereum"] = {.price = 0.5, .change24h = -0.3};
    }
    static Point at(const PanelLayout& layout, std::string_view words) {
        for (const auto& [what, frame] : layout.items) {
            if (const auto* text = std::get_if<StyledText>(&what); text && text->text == words) {
                return frame.origin();
            }
        }
        return {-1, -1};
    }
    template <typename What>
    static std::vector<Rect> frames(const PanelLayout& layout) {
        std::vector<Rect> found;
        for (const auto& [what, frame] : layout.items) {
            if (std::holds_alternative<What>(what)) {
                found.push_back(frame);
            }
        }
        return found;
    }

    platform::VirtualGraphics graphics;
    FloatingState state;
    FloatingView view{graphics};
};

// The numbers below are worked out by hand: a character is 0.6 of its font's size wide, a line 1.2 of it high
// and then a whole number of pixels.

TEST_F(FloatingViewTest, AnEmptyPanelIsItsHeaderAboveOneLine) {
    const auto layout = layOut();
    EXPECT_EQ(layout.plate, (Rect{0, 0, 114, 66}));  // 105.4 x 30 over 76 x 28, and 4 around them
    EXPECT_EQ(layout.ring, (Rect{14, 38, 18, 18}));
    EXPECT_EQ(frames<platform::ImagePtr>(layout).at(0), (Rect{18, 42, 10, 10}));
    EXPECT_EQ(at(layout, "Coingecko"), (Point{40, 40}));
    EXPECT_EQ(at(layout, "Loading..."), (Point{27, 12}));
}

TEST_F(FloatingViewTest, AFeeStandsBesideTheName) {
    state.settings.showGasFee = true;
    state.settings.gasSource = 1;
    state.currentGasPrice = 12.7;
    auto layout = layOut();
    EXPECT_EQ(layout.plate.size(), (Size{227, 66}));
    EXPECT_EQ(at(layout, "BTC"), (Point{107, 41}));
    EXPECT_EQ(frames<PanelLayout::Symbol>(layout).at(0), (Rect{129, 41, 11, 11}));
    EXPECT_EQ(at(layout, " 12"), (Point{144, 40}));
    EXPECT_EQ(at(layout, " sat/vB"), (Point{166, 40}));

    graphics.missingSymbols = {"fuelpump.fill"};
    layout = layOut();
    EXPECT_EQ(layout.plate.width, 212) << "what is missing leaves no gap";
}

TEST_F(FloatingViewTest, CoinsStandInAGridWithAlignedColumns) {
    showTwoCoins();
    const auto layout = layOut();
    EXPECT_EQ(layout.plate.size(), (Size{289, 127}));  // 288.6 x 127 in whole pixels
    const auto dividers = frames<PanelLayout::Divider>(layout);
    EXPECT_THAT(dividers, testing::ElementsAre(testing::Field(&Rect::y, 88), testing::Field(&Rect::y, 38)));
    EXPECT_EQ(dividers[0].x, 4);
    EXPECT_NEAR(dividers[0].width, 280.6, 1e-9);
    EXPECT_EQ(dividers[0].height, 1);
    EXPECT_EQ(at(layout, "BITC"), (Point{10, 56}));
    EXPECT_EQ(at(layout, "64250.50"), (Point{67, 62}));
    EXPECT_EQ(at(layout, "Ref: 60000.00"), (Point{55, 51}));
    EXPECT_EQ(at(layout, "+2.5%"), (Point{193, 62}));
    EXPECT_EQ(at(layout, "71234.50/69000.00"), (Point{141, 52}));
    EXPECT_EQ(frames<SparklineView>(layout).at(0), (Rect{239, 53, 40, 20}));
    EXPECT_EQ(at(layout, "ETH"), (Point{14, 12}));
    EXPECT_EQ(at(layout, "0.5000"), (Point{82, 12}));
}

TEST_F(FloatingViewTest, AGridWithoutAQuoteIsItsPadding) {
    showTwoCoins();
    state.marketData.clear();
    EXPECT_EQ(layOut().plate, (Rect{0, 0, 114, 46}));  // 105.4 x 30 over 0 x 8, and 4 around them
}

TEST_F(FloatingViewTest, EverythingBeginsOnAWholePixelWhateverTheRatio) {
    showTwoCoins();
    state.settings.showGasFee = true;
    state.currentGasPrice = 12.7;
    for (const double scale : {1.25, 1.5, 1.75, 2.25}) {
        const auto isWhole = [scale](double length) {
            return std::abs(length * scale - std::round(length * scale)) < 1e-9;
        };
        view.update(state, {.scale = scale}, 1);
        EXPECT_TRUE(isWhole(view.margin())) << scale;
        EXPECT_GE(view.margin(), 10) << scale;
        EXPECT_TRUE(isWhole(view.fittingSize().width) && isWhole(view.fittingSize().height)) << scale;
        const auto layout = layOut(scale, view.margin());
        for (const auto& [what, frame] : layout.items) {
            EXPECT_TRUE(isWhole(frame.x) && isWhole(frame.y)) << scale << ", item " << what.index();
        }
        const double divider = frames<PanelLayout::Divider>(layout).at(0).height;
        EXPECT_TRUE(isWhole(divider) && divider > 0) << scale;
    }
    EXPECT_EQ(frames<PanelLayout::Divider>(layOut(0.25)).at(0).height, 4) << "one pixel is the least";
}

TEST_F(FloatingViewTest, ASourceWithoutAnImageHasTheNetworkSymbolInItsRing) {
    graphics.images.clear();
    EXPECT_EQ(frames<PanelLayout::Symbol>(layOut()).at(0), (Rect{19, 43, 8, 8}));
    EXPECT_TRUE(frames<platform::ImagePtr>(layOut()).empty());
    graphics.missingSymbols = {"network"};
    EXPECT_EQ(layOut().ring, (Rect{14, 38, 18, 18}));
}

TEST_F(FloatingViewTest, AbsurdPricesDoNotAskForAnAbsurdPicture) {
    showTwoCoins();
    auto& quote = state.marketData["bitcoin"];
    quote.price = quote.high24h.emplace(-1e308);
    quote.low24h = -1e308;
    EXPECT_LE(layOut().plate.width, 4096);
}

TEST_F(FloatingViewTest, TheRingEmptiesClockwiseByPixels) {
    const auto arcs = [this](double progress) {
        view.update(state, {}, progress);
        return platform::drawn(view.picture()).all(Kind::Arc);
    };
    EXPECT_EQ(arcs(18 / 57.0).at(0).arc,
              (platform::Canvas::Arc{.center = {33, 57}, .radius = 9, .start = 90, .sweep = -360 * (18 / 57.0)}));
    EXPECT_EQ(arcs(0.001).at(0).arc.sweep, -360 / 57.0) << "57 pixels around";
    const int drawings = graphics.drawings;
    EXPECT_TRUE(arcs(0).empty()) << "nothing is left of a refresh that is due";
    EXPECT_EQ(graphics.drawings, drawings + 1) << "the rest, with its shadow, is not drawn anew";
    EXPECT_FALSE(view.update(state, {}, 0));
    view.forgetLook();
    EXPECT_TRUE(view.update(state, {}, 0));
}

TEST_F(FloatingViewTest, ASparklineOfHardlyAnyRangeIsNoMountain) {
    for (const auto& [prices, end] :
         {std::pair{std::vector{1.0, 3.0}, 27.0}, {{1.0, 1.00001}, 9.0}, {{4.0, 4.0}, 7.0}}) {
        const auto picture = graphics.draw(
            {50, 30}, 1, [&](platform::Canvas& canvas) { SparklineView{prices, {}}.draw(canvas, {5, 7, 40, 20}); });
        const auto points = platform::drawn(picture).all(Kind::Line).at(0).points;
        EXPECT_NEAR(points.at(1).x, 45, 1e-6);
        EXPECT_NEAR(points.at(1).y, end, 1e-6);
    }
}

}  // namespace
}  // namespace glintar::floating
