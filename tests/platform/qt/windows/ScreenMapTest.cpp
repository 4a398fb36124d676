#include "platform/qt/windows/ScreenMap.h"

#include <gmock/gmock.h>

namespace glintar::platform {

namespace {

ScreenMap::Screen screen(int x, int y, int width, int height, double scale) {
    const QRect frame(x, y, width, height);
    return {.frame = frame, .available = frame, .scale = scale};
}

/// What X has in pixels as 1280x800, and beside it 1600x1200 at twice the size.
std::vector<ScreenMap::Screen> plainAndDense() {
    return {screen(0, 0, 1280, 800, 1), screen(1280, 0, 800, 600, 2)};
}

/// The primary one stands to the right of the other, and lower.
std::vector<ScreenMap::Screen> primaryOffOrigin() {
    return {screen(1280, 200, 800, 600, 1), screen(0, 0, 640, 400, 2)};
}

struct Place {
    std::string name;
    std::vector<ScreenMap::Screen> screens;
    PixelPoint pixel;
    Point point;
    double scale = 1;
};

/// As Qt has it and as we have it, and in pixels.
struct Area {
    std::string name;
    std::vector<ScreenMap::Screen> screens;
    std::size_t of = 0;
    PixelArea pixels;
    QRect qt;
    Rect ours;
};

TEST(ScreenMapTest, AnAreaIsTheSameHoweverItIsCounted) {
    for (const auto& [name, screens, of, pixels, qt, ours] :
         {Area{"OneScreen", {screen(0, 0, 1280, 800, 1)}, 0, {980, 0, 300, 28}, {980, 0, 300, 28}, {980, 772, 300, 28}},
          Area{"OneDenseScreen",
               {screen(0, 0, 640, 400, 2)},
               0,
               {0, 54, 1280, 746},
               {0, 27, 640, 373},
               {0, 0, 640, 373}},
          // The work area of all screens, in the points of the dense one.
          Area{"Both", plainAndDense(), 1, {0, 60, 2880, 1140}, {640, 30, 1440, 570}, {640, 200, 1440, 570}},
          Area{"OffOrigin", primaryOffOrigin(), 1, {20, 40, 600, 56}, {10, 20, 300, 28}, {-1270, 752, 300, 28}}}) {
        const ScreenMap map(screens);
        EXPECT_EQ(map.fromQt(qt), ours) << name;
        EXPECT_EQ(map.toQt(ours), qt) << name;
        EXPECT_EQ(map.toPoints(pixels, screens[of]), ours) << name;
    }
}

TEST(ScreenMapTest, AScreenThatIsNotThereIsThePrimaryOne) {
    auto screens = plainAndDense();
    screens[0].name = "left";
    screens[1].name = "right";
    const ScreenMap map(screens);
    EXPECT_EQ(map.screenNamed("right"), screens[1]);
    EXPECT_EQ(map.screenNamed("unplugged"), screens[0]);
    EXPECT_EQ(map.screenNamed(""), screens[0]);
}

TEST(ScreenMapTest, WhatReachesOverTheEdgeOfADenseScreenStaysWithIt) {
    const ScreenMap map({screen(0, 0, 400, 400, 2), screen(800, 0, 800, 800, 1)});
    EXPECT_EQ(map.toPixels({415, 350}), (PixelPoint{830, 100}));
    EXPECT_EQ(map.screenAt({415, 350}).scale, 2);
}

TEST(ScreenMapTest, FarAwayIsWhereTheXServerEnds) {
    const ScreenMap map(plainAndDense());
    EXPECT_EQ(map.toPixels({1e300, -1e300}), (PixelPoint{32767, 32767}));
}

TEST(ScreenMapTest, CountsFromTheBottomLeftOfThePrimaryScreenInPointsOfTheScreenThatIsMeant) {
    for (const auto& [name, screens, pixel, point, scale] :
         {Place{"NoScreenYet", {}, {3, 4}, {3, -4}},
          Place{"OneScreen", {screen(0, 0, 1280, 800, 1)}, {10, 20}, {10, 780}},
          Place{"FractionsOfAPoint", {screen(0, 0, 640, 400, 2)}, {11, 21}, {5.5, 389.5}, 2},
          Place{"PanelBarBeyondTheLeftEdge", {screen(0, 0, 640, 400, 2)}, {-30, -10}, {-15, 405}, 2},
          Place{"OnTheSecondScreen", plainAndDense(), {1300, 40}, {1290, 780}, 2},
          Place{"FirstColumnOfTheSecondScreen", plainAndDense(), {1280, 40}, {1280, 780}, 2},
          Place{"LastColumnOfTheFirst", plainAndDense(), {1279, 40}, {1279, 760}},
          Place{"PrimaryIsNotAtTheOrigin", primaryOffOrigin(), {100, 100}, {50 - 1280, 750}, 2},
          Place{"Left", {screen(0, 0, 800, 600, 1), screen(-1600, -200, 800, 450, 2)}, {-1400, -100}, {-1500, 750}, 2},
          Place{"RoundedUpByQt", {screen(0, 0, 427, 267, 1.5), screen(640, 0, 640, 400, 1)}, {640, 30}, {640, 237}}}) {
        const ScreenMap map(screens);
        EXPECT_EQ(map.toPoints(pixel), point) << name;
        EXPECT_EQ(map.toPixels(point), pixel) << name;
        EXPECT_EQ(map.screenAt(point).scale, scale) << name;
    }
}

}  // namespace

TEST(FreeArea, IsWhatPanelsLeaveOfTheScreen) {
    const Rect left{0, 0, 1000, 600};
    const Rect right{1000, 0, 1000, 600};
    const Rect belowPanel{0, 0, 2000, 570};
    EXPECT_EQ(freeArea(left, belowPanel), (Rect{0, 0, 1000, 570}));
    EXPECT_EQ(freeArea(right, belowPanel), (Rect{1000, 0, 1000, 570}));
    const Rect ofTheLowerScreenOnly{0, 0, 2000, 400};
    EXPECT_EQ(freeArea(left, ofTheLowerScreenOnly), left);
    const Rect elsewhere{3000, 0, 100, 100};
    EXPECT_EQ(freeArea(left, elsewhere), left);
}

}  // namespace glintar::platform
