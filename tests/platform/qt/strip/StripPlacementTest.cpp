#include "platform/qt/strip/StripPlacement.h"
#include "platform/qt/strip/StripText.h"
#include "platform/virtual/VirtualGraphics.h"
#include "platform/virtual/VirtualStores.h"

#include <gtest/gtest.h>

namespace glintar::platform {

namespace {

using Edge = StripPlace::Edge;
using Corner = StripPlace::Corner;

// A screen to the right of another, with a panel of 30 points at its top.
constexpr Rect kArea{1000, 0, 1000, 570};

struct Hanging {
    const char* name;
    StripPlace place;
    Size strip;
    Rect frame;
};

TEST(StripPlacement, IsInTheFreePartOfTheScreen) {
    for (const auto& [name, place, strip, frame] :
         {Hanging{"TopRightCorner", {}, {300, 28}, {1700, 542, 300, 28}},
          Hanging{"KeepsItsRightEndWhenLonger", {Edge::Top, Corner::End, 50}, {400, 28}, {1550, 542, 400, 28}},
          Hanging{"KeepsItsLeftEndWhenLonger", {Edge::Top, Corner::Start, 50}, {400, 28}, {1050, 542, 400, 28}},
          Hanging{"BottomEdge", {Edge::Bottom, Corner::End, 50}, {300, 28}, {1650, 0, 300, 28}},
          Hanging{"LeftSideFromAbove", {Edge::Left, Corner::Start, 100}, {300, 28}, {1000, 442, 300, 28}},
          Hanging{"RightSideFromBelow", {Edge::Right, Corner::End, 100}, {300, 28}, {1700, 100, 300, 28}},
          Hanging{"TooFarLeftOnASmallerScreen", {Edge::Top, Corner::End, 900}, {300, 28}, {1000, 542, 300, 28}},
          Hanging{"TooFarRightOnASmallerScreen", {Edge::Top, Corner::Start, 900}, {300, 28}, {1700, 542, 300, 28}},
          Hanging{"TooFarDownOnASmallerScreen", {Edge::Left, Corner::Start, 900}, {300, 28}, {1000, 0, 300, 28}},
          Hanging{"WiderThanTheScreen", {Edge::Top, Corner::End, 50}, {1200, 28}, {800, 542, 1200, 28}},
          Hanging{"WiderThanTheScreenFromTheLeft", {Edge::Left, Corner::End, 0}, {1200, 28}, {800, 0, 1200, 28}}}) {
        EXPECT_EQ(stripFrame(place, strip, kArea), frame) << name;
    }
}

struct Held {
    const char* name;
    Rect held;
    StripPlace place;
};

TEST(StripPlacement, IsAtTheNearestEdge) {
    for (const auto& [name, held, place] :
         {Held{"Top", {1500, 500, 300, 28}, {Edge::Top, Corner::End, 200}},
          Held{"TopFromTheLeft", {1100, 500, 300, 28}, {Edge::Top, Corner::Start, 100}},
          Held{"Bottom", {1500, 40, 300, 28}, {Edge::Bottom, Corner::End, 200}},
          Held{"LeftSide", {1020, 400, 300, 28}, {Edge::Left, Corner::Start, 142}},
          Held{"RightSide", {1690, 100, 300, 28}, {Edge::Right, Corner::End, 100}},
          Held{"NearlyInTheCorner", {1693, 538, 300, 28}, {Edge::Top, Corner::End, 0}},
          // Nearer to the side, but it lies along the top.
          Held{"LongLineNearTheTop", {1010, 520, 980, 28}, {Edge::Top, Corner::End, 10}},
          Held{"BeyondTheScreen", {1900, 700, 300, 28}, {Edge::Top, Corner::End, 0}}}) {
        EXPECT_EQ(nearestPlace(held, kArea), place) << name;
    }
}

TEST(StripPlace, IsRememberedAndNonsenseIsNot) {
    VirtualPreferences preferences;
    EXPECT_EQ(loadPlace(preferences), std::nullopt);

    const StripPlace onSecondScreen{Edge::Bottom, Corner::Start, 120, "HDMI-1"};
    savePlace(preferences, onSecondScreen);
    EXPECT_EQ(loadPlace(preferences), onSecondScreen);
    const StripPlace onPrimaryScreen{Edge::Right, Corner::End, 7};
    savePlace(preferences, onPrimaryScreen);
    EXPECT_EQ(loadPlace(preferences), onPrimaryScreen);

    preferences.setReal("stripOffset", -50);
    EXPECT_EQ(loadPlace(preferences).value().offset, 0);
    preferences.setReal("stripOffset", std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(loadPlace(preferences), std::nullopt);
    preferences.setReal("stripOffset", 0);
    preferences.setString("stripEdge", "middle");
    EXPECT_EQ(loadPlace(preferences), std::nullopt);
}

TEST(StripText, StandsOnAPlateOfItsOwnApartFromThePicturesBeside) {
    const VirtualGraphics graphics;
    const auto run = [](const char* text) { return TextRun{.text = text, .font = {.size = 12}, .color = {}}; };
    const auto picture = graphics.draw({30, 24}, 1, [](Canvas&) {});
    const auto wordsAlone = titleParts({run("⚠️ "), run("Net Error")}, graphics, 1, Appearance::Light);
    ASSERT_EQ(wordsAlone.size(), 1U) << "texts share a plate";

    const auto parts =
        titleParts({run("⚠️ "), run("Net Error"), run("   "), PictureRun{.image = picture, .offset = {0, -7.5}}},
                   graphics, 1, Appearance::Light);
    ASSERT_EQ(parts.size(), 3U);
    EXPECT_EQ(parts[0].description, "⚠️ Net Error");
    EXPECT_EQ(parts[0].width, wordsAlone[0].width) << "the gap is no part of the plate";
    EXPECT_FALSE(parts[1].picture);
    EXPECT_GT(parts[1].width, 0);
    EXPECT_EQ(parts[2].picture, picture);
    for (const auto& part : {parts[0], parts[2]}) {
        EXPECT_EQ(part.bottom, 3) << "the plates of both are 22 points high, the strip 28";
    }
}

}  // namespace

}  // namespace glintar::platform
