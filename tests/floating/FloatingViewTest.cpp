#include "floating/CountdownRing.h"
#include "floating/FloatingView.h"
#include "floating/PanelLayout.h"
#include "platform/virtual/VirtualGraphics.h"
#include "support/Market.h"

#include <gtest/gtest.h>

#include <cmath>

namespace glintar::floating {
namespace {

using namespace std::chrono_literals;
using platform::Duration;
using platform::Instant;
using platform::Rect;
using platform::Seconds;
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

class CountdownRingTest : public testing::Test {
protected:
    Instant at(Duration time) const { return start + time; }
    double progress(Duration time) const { return ring.progress(at(time)); }
    double shown(Instant time) const { return CountdownRing::shownProgress(ring.progress(time), 1); }

    const Instant start{24h};
    CountdownRing ring{start};
};

TEST_F(CountdownRingTest, ItLooksOnceASecondAndMovesThereWithinTheNext) {
    EXPECT_EQ(progress(0s), 1);
    ring.setNextRefresh(at(400ms), at(50s), Seconds(50));
    const std::pair<Duration, double> fall[] = {{1s, 1},        {1500ms, 0.99},  {2s, 0.98}, {2250ms, 0.975},
                                                {50s, 1 / 50.}, {50500ms, 0.01}, {51s, 0.0}, {90s, 0.0}};
    for (const auto& [time, expected] : fall) {
        EXPECT_NEAR(progress(time), expected, 1e-9) << Seconds(time).count();
    }

    ring.setNextRefresh(at(60300ms), at(110500ms), Seconds(50));  // at 61 s it will see 49.5 of 50
    const std::pair<Duration, double> refill[] = {
        {60300ms, 0.0}, {61s, 0.0}, {61500ms, 0.495}, {62s, 0.99}, {63s, 0.97}};
    for (const auto& [time, expected] : refill) {
        EXPECT_NEAR(progress(time), expected, 1e-9) << Seconds(time).count();
    }

    ring.setNextRefresh(at(61500ms), at(61500ms), Seconds(50));
    EXPECT_NEAR(progress(61750ms), 0.7425, 1e-9) << "what has begun to move arrives first";
    EXPECT_NEAR(progress(62500ms), 0.495, 1e-9);
    ring.setNextRefresh(at(70s), at(170s), Seconds(50));
    EXPECT_EQ(progress(72s), 1) << "more than a whole interval is left";
}

TEST_F(CountdownRingTest, NobodyIsWokenWhileItLooksTheSame) {
    EXPECT_GT(ring.unchangedFor(start, 1), 1s) << "the refresh is due, but nothing moves before the first look";
    for (const auto& [interval, steps] : {std::pair{60s, 57}, std::pair{3600s, 57}, std::pair{10s, 57}}) {
        CountdownRing fresh(start);
        ring = fresh;
        ring.setNextRefresh(start, start + interval, Seconds(interval));
        int seen = 0;
        Instant now = start;
        while (const auto wait = ring.unchangedFor(now, 1)) {
            EXPECT_EQ(shown(now + *wait - 3ms), shown(now)) << "it came too late";
            EXPECT_LT(shown(now + *wait), shown(now)) << "it came for nothing";
            now += *wait;
            ASSERT_LT(++seen, 100);
        }
        EXPECT_EQ(seen, steps);
        EXPECT_EQ(ring.progress(now), 0);
    }
}

}  // namespace
}  // namespace glintar::floating
