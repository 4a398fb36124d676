#include "platform/qt/strip/StripText.h"
#include "platform/virtual/VirtualGraphics.h"

#include <gtest/gtest.h>

namespace glintar::test {
namespace {

using namespace platform;

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
}  // namespace glintar::test
