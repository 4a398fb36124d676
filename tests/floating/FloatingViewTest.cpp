#include "floating/FloatingView.h"
#include "floating/PanelLayout.h"
#include "platform/virtual/VirtualGraphics.h"
#include "support/Market.h"

#include <gtest/gtest.h>

#include <cmath>

namespace glintar::floating {
namespace {

using platform::Rect;
using Kind = platform::Drawn::Kind;

class FloatingViewTest : public testing::Test {
protected:
    PanelLayout layOut(double scale = 1, double margin = 0) const {
        return layOutPanel(composeContent(state, platform::Appearance::Dark), graphics, PixelGrid(scale), margin);
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

// tests/pictures/ knows what stands where.

TEST_F(FloatingViewTest, WhatIsMissingLeavesNoGap) {
    state.settings.showGasFee = true;
    state.currentGasPrice = 12;
    const double width = layOut().plate.width;
    graphics.missingSymbols = {"fuelpump.fill"};
    EXPECT_NEAR(layOut().plate.width, width - 15, 1);
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
