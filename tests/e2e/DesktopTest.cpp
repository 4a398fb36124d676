// The desktop program on a screen of its own: what its user sees, with the window managers and trays that there are.

#include "support/Program.h"
#include "e2e/ProgramTest.h"
#include "support/Display.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace glintar::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Where a window stands, in pixels.
struct Place {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

int numberAfter(const std::string& text, std::string_view words) {
    int number = 0;
    if (const auto at = text.find(words); at != std::string::npos) {
        const char* from = text.data() + at + words.size();
        std::from_chars(from, text.data() + text.size(), number);
    }
    return number;
}

class DesktopTest : public ProgramTest {
protected:
    static constexpr auto* kFiveCoins =
        R"(savedCoins=@ByteArray([{\"id\":\"11111111-2222-4333-8444-555555555551\",\"displayName\":\"BTC\",\"apiId\":\"bitcoin\"},)"
        R"({\"id\":\"11111111-2222-4333-8444-555555555552\",\"displayName\":\"ETH\",\"apiId\":\"ethereum\"}]))"
        "\n";

    /// The profile's, on the test's own screen and bus.
    Environment environment() const {
        auto environment = ProgramTest::environment();
        for (const auto* name : {"DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"}) {
            const char* value = std::getenv(name);
            environment[name] = value ? std::optional<std::string>(value) : std::nullopt;
        }
        environment["QT_ACCESSIBILITY"] = "0";
        return environment;
    }

    Program start(Environment extra = {}) const {
        auto all = environment();
        for (auto& [name, value] : extra) {
            all[name] = value;
        }
        return Program({GLINTAR_PROGRAM}, all);
    }

    static std::optional<Place> placeOf(const std::string& title) {
        const auto text = outputOf({"xwininfo", "-name", title});
        if (!text.contains("Map State: IsViewable")) {
            return std::nullopt;
        }
        return Place{numberAfter(text, "Absolute upper-left X:  "), numberAfter(text, "Absolute upper-left Y:  "),
                     numberAfter(text, "Width: "), numberAfter(text, "Height: ")};
    }

    /// How many of the pixels of a row through the strip have about this grey, which is that of the pills.
    int pillPixels(int grey) const {
        const auto place = placeOf("Glintar prices");
        if (!place || place->x < 0 || place->y < 0) {
            return 0;
        }
        int found = 0;
        // Above the texts and below the rim of the pills.
        for (int x = place->x; x < std::min(place->x + place->width, 1280); ++x) {
            const auto pixel = display->pixel(x, place->y + place->height / 2 - 9);
            found += std::ranges::all_of(pixel, [&](int part) { return std::abs(part - grey) <= 6; });
        }
        return found;
    }
    bool showsPills(int grey) const {
        return eventually([&] { return pillPixels(grey) > 80; });
    }

    void showScreen() { display.emplace(); }

    std::optional<Display> display;
};

constexpr int kLightPill = 230;
constexpr int kDarkPill = 38;

struct DesktopCase {
    std::string name;
    Display::Manager manager;
    bool hasCompositor;
    bool hasPanel;  ///< with the newer kind of tray; otherwise there is one of the older kind
};

class DesktopsTest : public DesktopTest, public testing::WithParamInterface<DesktopCase> {};

TEST_P(DesktopsTest, PillsStandInTheCornerAboveOtherWindowsAndTakeNoFocus) {
    showScreen();
    display->startManager(GetParam().manager);
    if (GetParam().hasCompositor) {
        display->startCompositor();
    }
    GetParam().hasPanel ? display->startPanel() : display->startTray();
    preferences(kFiveCoins);
    auto program = start();
    ASSERT_TRUE(showsPills(kLightPill)) << program.errors();
    const auto place = placeOf("Glintar prices");
    ASSERT_TRUE(place);
    EXPECT_EQ(place->x + place->width, 1280);
    EXPECT_GE(place->y, GetParam().hasPanel ? 20 : 0);
    EXPECT_LE(place->y, GetParam().hasPanel ? 60 : 0);

    // A window over the whole screen gets the focus and keeps it when the strip is clicked.
    const Child other({"xmessage", "-name", "other", "-geometry", "1280x800+0+0", "something else"});
    ASSERT_TRUE(eventually([] { return placeOf("other").has_value(); }));
    EXPECT_TRUE(showsPills(kLightPill)) << "it is covered";
    const auto focused = outputOf({"xdotool", "getwindowfocus"});
    display->input({"mousemove", std::to_string(place->x + 60), std::to_string(place->y + 8), "click", "1"});
    EXPECT_EQ(outputOf({"xdotool", "getwindowfocus"}), focused);

    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0) << program.errors();
}

INSTANTIATE_TEST_SUITE_P(Desktops, DesktopsTest,
                         testing::Values(DesktopCase{"OpenboxAlone", Display::Manager::Openbox, false, false},
                                         DesktopCase{"OpenboxWithACompositor", Display::Manager::Openbox, true, true},
                                         DesktopCase{"Xfwm4Alone", Display::Manager::Xfwm4, false, true},
                                         DesktopCase{"Xfwm4WithACompositor", Display::Manager::Xfwm4, true, false}),
                         [](const auto& test) { return test.param.name; });

TEST_F(DesktopTest, TheDesktopTurnsDarkAndThePillsWithIt) {
    showScreen();
    display->startManager(Display::Manager::Openbox);
    preferences(kFiveCoins);
    Program portal({"/usr/bin/python3", GLINTAR_PORTAL}, environment(), Program::Output::Terminal);
    ASSERT_TRUE(portal.waitForOutput("ready")) << portal.output();
    auto program = start();
    ASSERT_TRUE(showsPills(kLightPill)) << program.errors();
    portal.type("dark\n");
    EXPECT_TRUE(showsPills(kDarkPill));
    portal.type("light\n");
    EXPECT_TRUE(showsPills(kLightPill));
}

TEST_F(DesktopTest, ThePanelFollowsThePointerAndLetsClicksThrough) {
    showScreen();
    display->startManager(Display::Manager::Openbox);
    display->startCompositor();
    preferences("displayMode=1\n");
    auto program = start();
    ASSERT_TRUE(eventually([] { return placeOf("Glintar panel").has_value(); })) << program.errors();
    EXPECT_TRUE(eventually([&] { return log().contains("bitcoin"); }));
    for (const auto& [x, y] : {std::pair{300, 200}, std::pair{500, 400}}) {
        display->input({"mousemove", std::to_string(x), std::to_string(y)});
        // 16 and 12 points from the pointer; the window holds the shadow as well.
        EXPECT_TRUE(eventually([x, y] {
            const auto place = placeOf("Glintar panel");
            return place && place->x <= x + 28 && place->x > x + 10 && place->y <= y + 28 && place->y > y + 10;
        }));
    }
    preferences("displayMode=0\n");
    EXPECT_TRUE(eventually([] { return !placeOf("Glintar panel"); })) << "the mode changes while the program runs";
    EXPECT_TRUE(showsPills(kLightPill));
}

TEST_F(DesktopTest, ASecondStartShowsTheMenuOfTheFirstAndQuitEndsIt) {
    showScreen();
    display->startManager(Display::Manager::Openbox);
    auto first = start();
    ASSERT_TRUE(eventually([] { return placeOf("Glintar prices").has_value(); })) << first.errors();
    const auto windows = [] { return outputOf({"xdotool", "search", "--onlyvisible", "--class", "glintar"}); };
    const auto before = windows();
    auto second = start();
    EXPECT_EQ(second.wait(), 0) << second.errors();
    ASSERT_TRUE(eventually([&] { return windows() != before; })) << "no menu";
    display->input({"key", "Down", "Return"});
    EXPECT_EQ(first.wait(), 0);
    EXPECT_THAT(first.errors(), HasSubstr("Quit App clicked"));
}

TEST_F(DesktopTest, WithoutABusASecondStartEndsQuietlyToo) {
    display.emplace("1280x800x24", Display::Bus::None);
    auto first = start({{"DBUS_SESSION_BUS_ADDRESS", std::nullopt}});
    ASSERT_TRUE(showsPills(kLightPill)) << first.errors();
    auto second = start({{"DBUS_SESSION_BUS_ADDRESS", std::nullopt}});
    EXPECT_EQ(second.wait(), 0);
    EXPECT_EQ(first.isRunning(), true);
}

TEST_F(DesktopTest, TheScreenGoingAwayEndsItWithOneLine) {
    showScreen();
    auto program = start();
    ASSERT_TRUE(showsPills(kLightPill)) << program.errors();
    display->stop();
    EXPECT_EQ(program.wait(), 1);
    EXPECT_THAT(program.errors(), HasSubstr("the display has gone away"));
    EXPECT_THAT(program.errors(), Not(HasSubstr("X11 connection")));
}

TEST_F(DesktopTest, AScreenOutOfReachIsSaidSo) {
    auto program = start({{"DISPLAY", ":9999"}});
    EXPECT_EQ(program.wait(), 1);
    EXPECT_THAT(program.errors(), HasSubstr(":9999"));
}

TEST_F(DesktopTest, TheDemonstrationNeedsNoProfileAndLeavesNoneBehind) {
    showScreen();
    auto environment = this->environment();
    Program program({GLINTAR_PROGRAM, "--demo"}, environment);
    EXPECT_TRUE(program.waitForErrors("none of these prices is real")) << program.errors();
    EXPECT_TRUE(showsPills(kLightPill)) << program.errors();
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);
}

}  // namespace
}  // namespace glintar::test
