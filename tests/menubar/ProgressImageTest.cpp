// The countdown beside the line: a picture, and when it is drawn.

#include "menubar/ProgressImage.h"
#include "platform/virtual/VirtualGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace glintar::menubar {
namespace {

using platform::Appearance;
using platform::Color;
using platform::Rect;
using testing::SizeIs;
using Kind = platform::Drawn::Kind;

const platform::VirtualGraphics graphics;
const platform::ImagePtr icon = *graphics.decode("image 64x64 btc");
constexpr Look kLight;
constexpr Look kDark{.appearance = Appearance::Dark, .scale = 2};

TEST(ProgressImageTest, TheBrightPartGrowsClockwiseFromTwelve) {
    const auto picture = platform::drawn(renderProgressImage(graphics, icon, 0.25, 2));
    EXPECT_EQ(picture.size(), (platform::Size{28, 21}));
    ASSERT_THAT(picture.operations, SizeIs(3));
    const auto &dim = picture.operations[0], &pie = picture.operations[1], &ring = picture.operations[2];
    EXPECT_EQ(dim.frame, (Rect{0, 0, 21, 21}));
    EXPECT_EQ(dim.opacity, 0.3);
    EXPECT_EQ(pie.frame, dim.frame);
    EXPECT_EQ(pie.arc, (platform::Canvas::Arc{{10.5, 10.5}, 15, 90, -90}));
    EXPECT_EQ(ring.arc, (platform::Canvas::Arc{{10.5, 10.5}, 10, 0, 360}));
    EXPECT_EQ(ring.color, Color::white(0.2, 0.8));
    EXPECT_EQ(ring.lineWidth, 1);
    EXPECT_EQ(platform::drawn(renderProgressImage(graphics, icon, std::nan(""), 1)).all(Kind::Pie).at(0).arc.sweep, 0);
    EXPECT_THAT(platform::drawn(renderProgressImage(graphics, nullptr, 1, 1)).operations, SizeIs(1));
}

/// Pictures and calls of one countdown, by a caller who comes when he was told to.
struct Count {
    int pictures = 0, calls = 0;
};
Count countDown(platform::Seconds interval, const Look& look) {
    Countdown countdown(graphics);
    Count count;
    for (platform::Seconds passed{}; passed <= interval && count.calls < 1000; ++count.calls) {
        count.pictures += countdown.pictureAt(passed / interval, "coingecko", look) ? 1 : 0;
        passed += Countdown::unchangedFor(passed / interval, interval, look.scale);
    }
    return count;
}

TEST(CountdownTest, ItIsDrawnOncePerHalfPixelAndNobodyNeedAskInBetween) {
    using platform::Seconds;
    // 21 points of diameter: 66 pixels around, 132 halves and the start.
    for (const double interval : {60.0, 30.0}) {
        EXPECT_EQ(countDown(Seconds{interval}, kLight).pictures, 133);
        EXPECT_EQ(countDown(Seconds{interval}, kLight).calls, 133);
    }
    EXPECT_EQ(countDown(Seconds{60}, kDark).pictures, 265);
    EXPECT_NEAR(Countdown::unchangedFor(0, Seconds{60}, 1).count(), 60.0 / 132, 1e-9);
    EXPECT_NEAR(Countdown::unchangedFor(1.75 / 132, Seconds{60}, 1).count(), 0.25 * 60 / 132, 1e-9);
    EXPECT_NEAR(Countdown::unchangedFor(1, Seconds{60}, 1).count(), 60.0 / 132, 1e-9) << "the end must not spin";
    EXPECT_GT(Countdown::unchangedFor(0.5, Seconds{0}, 1).count(), 0);
}

TEST(CountdownTest, ItIsDrawnAgainWhenSourceOrLookChange) {
    Countdown countdown(graphics);
    const auto imageAt = [&](double elapsed, std::string_view source, const Look& look) -> std::string {
        const auto picture = countdown.pictureAt(elapsed, source, look);
        return picture ? platform::drawn(picture).all(Kind::Image).at(0).text : "";
    };
    EXPECT_EQ(imageAt(0.5, "coingecko", kLight), "coingecko");
    EXPECT_EQ(imageAt(0.5005, "coingecko", kLight), "");
    EXPECT_EQ(imageAt(0.5005, "unheard-of", kLight), "network");
    EXPECT_EQ(imageAt(0.5005, "unheard-of", {.appearance = Appearance::Dark}), "network");
    EXPECT_EQ(imageAt(0.5005, "unheard-of", kDark), "network");
    EXPECT_EQ(imageAt(0.1, "unheard-of", kDark), "network") << "a new countdown";
}

}  // namespace
}  // namespace glintar::menubar
