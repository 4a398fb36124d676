// The countdown beside the line: a picture, and when it is drawn.

#include "menubar/ProgressImage.h"
#include "platform/virtual/VirtualGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace glintar::menubar {
namespace {

using platform::Appearance;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = platform::Drawn::Kind;

const platform::VirtualGraphics graphics;
const platform::ImagePtr icon = *graphics.decode("image 64x64 btc");
constexpr Look kLight;
constexpr Look kDark{.appearance = Appearance::Dark, .scale = 2};

TEST(ProgressImageTest, AnyNumberAndNoIconCanBeDrawn) {
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

}  // namespace
}  // namespace glintar::menubar
