// The panel at the pointer, as the desktop program's user sees it.

#include "e2e/DesktopTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

namespace glintar::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class PanelTest : public DesktopTest {
protected:
    /// Of the panel's plate, clear of what is written on it. Where its top left corner is to be.
    int brightness(int x, int y) const {
        const auto pixel = display->pixel(x + 5, y + 5);
        return (pixel[0] + pixel[1] + pixel[2]) / 3;
    }
};

TEST_F(PanelTest, ItFollowsThePointerAndTheDesktopsColours) {
    showScreen(Display::Manager::Openbox);
    auto portal = startPortal();
    ASSERT_TRUE(portal.waitForOutput("ready")) << portal.output();
    preferences(fiveCoins() + "displayMode=1\n");
    auto program = start({});
    ASSERT_TRUE(eventually([] { return placeOf("Glintar panel").has_value(); })) << program.errors();
    EXPECT_TRUE(eventually([&] { return log().contains("cardano"); }));
    for (const auto& [x, y] : {std::pair{500, 400}, std::pair{300, 200}}) {
        display->input({"mousemove", std::to_string(x), std::to_string(y)});
        EXPECT_TRUE(eventually([x, y] {
            const auto place = placeOf("Glintar panel");
            return place && place->x == x + 28 && place->y == y + 28;
        }));
    }
    EXPECT_TRUE(eventually([&] { return brightness(300 + 28, 200 + 28) > 240; })) << "on the black screen";

    portal.type("dark\n");
    EXPECT_TRUE(eventually([&] { return brightness(300 + 28, 200 + 28) < 60; }));
    preferences(fiveCoins() + "displayMode=0\n");
    EXPECT_TRUE(showsPills(kDarkPill));
}

TEST_F(PanelTest, TheModeChangesWhileItRuns) {
    showScreen(Display::Manager::Openbox);
    preferences(fiveCoins() + "displayMode=0\n");
    auto program = start({});
    ASSERT_TRUE(showsPills(kLightPill)) << program.errors();
    EXPECT_FALSE(placeOf("Glintar panel"));
    for (const bool hasPanel : {true, false, true}) {
        preferences(fiveCoins() + fmt::format("displayMode={}\n", hasPanel ? 1 : 0));
        EXPECT_TRUE(eventually([&] { return placeOf("Glintar panel").has_value() == hasPanel; })) << hasPanel;
        EXPECT_TRUE(showsPills(kLightPill, hasPanel ? 0 : 5)) << hasPanel;
    }
}

TEST_F(PanelTest, UnderWaylandItRestsBelowTheStripAndSaysSoOnce) {
    showScreen();
    display->startWayland();
    preferences(fiveCoins());
    auto program = start({});
    ASSERT_TRUE(eventually([&] { return log().contains("cardano"); })) << program.errors();
    const auto strip = placeOfStrip();
    ASSERT_TRUE(strip);
    EXPECT_EQ(strip->right(), 1280);
    EXPECT_EQ(strip->y, 0);
    // The frame of this one reaches under the strip and must not get its clicks.
    const Child other({"xmessage", "-name", "other", "-geometry", "1270x780+0+0", "something else"});
    ASSERT_TRUE(eventually([] { return placeOf("other").has_value(); }));
    EXPECT_TRUE(showsPills(kLightPill));
    const auto before = visibleWindows();
    display->input({"mousemove", "1265", "14", "click", "1"});
    EXPECT_TRUE(eventually([&] { return visibleWindows() != before; })) << "no menu";
    display->input({"click", "1"});

    constexpr auto kNotice = "stays below the status bar";
    preferences(fiveCoins() + "displayMode=1\n");
    ASSERT_TRUE(program.waitForErrors(kNotice)) << program.errors();
    // But for its shadow of 10 pixels, 4 below the strip.
    const auto restsBelowStrip = [&] {
        const auto panel = placeOf("Glintar panel");
        return panel && panel->right() - 10 == 1280 && panel->y + 10 == strip->height + 4 &&
               brightness(int(panel->x) + 10, int(panel->y) + 10) > 240;
    };
    for (const auto* x : {"300", "600"}) {
        display->input({"mousemove", x, "400"});
        EXPECT_TRUE(eventually(restsBelowStrip));
    }
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);

    auto again = start({});
    EXPECT_TRUE(eventually(restsBelowStrip)) << again.errors();
    again.signal(SIGTERM);
    EXPECT_EQ(again.wait(), 0);
    EXPECT_THAT(again.errors(), Not(HasSubstr(kNotice)));
}

}  // namespace
}  // namespace glintar::test
