// The desktop program on a screen of its own: what its user sees, with the window managers and trays that there are.

#include "e2e/ProgramTest.h"
#include "support/Display.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string>

namespace glintar::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
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
    /// Five coins of the market, and a pill each.
    static std::string fiveCoins() {
        std::string coins;
        int number = 0;
        for (const auto* coin : {"bitcoin", "ethereum", "solana", "ripple", "cardano"}) {
            coins += fmt::format(
                R"({}{{\"id\":\"11111111-2222-4333-8444-55555555555{}\",\"displayName\":\"{:.3}\",\"apiId\":\"{}\"}})",
                number == 0 ? "" : ",", number, coin, coin);
            ++number;
        }
        return fmt::format("savedCoins=\"@ByteArray([{}])\"\n", coins);
    }

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

    /// How many pills of this grey stand in the strip.
    int pills(int grey) const {
        const auto place = placeOf("Glintar prices");
        if (!place || place->x < 0 || place->y < 0 || place->x + place->width > 1280) {
            return 0;
        }
        int found = 0;
        int run = 0;
        // Above the texts and below the rim of the pills.
        for (const auto& pixel : display->pixels(place->x, place->y + place->height / 2 - 9, place->width, 1)) {
            const bool isPill = std::ranges::all_of(pixel, [&](int part) { return std::abs(part - grey) <= 6; });
            run = isPill ? run + 1 : 0;
            found += run == 30;
        }
        return found;
    }
    bool showsPills(int grey, int count = 5) const {
        return eventually([&] { return pills(grey) == count; });
    }

    static std::string visibleWindows() {
        return outputOf({"xdotool", "search", "--onlyvisible", "--class", "glintar"});
    }

    void showScreen() { display.emplace(); }

    std::optional<Display> display;
};

constexpr int kLightPill = 230;
constexpr int kDarkPill = 38;
constexpr int kPillsOfTheProfile = 4;  // three coins and the network's fee

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
    preferences(fiveCoins());
    auto program = start();
    ASSERT_TRUE(showsPills(kLightPill)) << program.errors();
    std::optional<Place> place;
    // Prices that arrive change its width.
    ASSERT_TRUE(eventually([&] {
        place = placeOf("Glintar prices");
        return place && place->x + place->width == 1280;
    })) << (place ? place->x + place->width : 0);
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
    EXPECT_THAT(program.errors(), HasSubstr("[CoinList] 检查列表更新"));
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
    preferences(fiveCoins());
    Program portal({"/usr/bin/python3", GLINTAR_PORTAL}, environment(), Program::Output::Terminal);
    ASSERT_TRUE(portal.waitForOutput("ready")) << portal.output();
    auto program = start();
    ASSERT_TRUE(showsPills(kLightPill)) << program.errors();
    portal.type("dark\n");
    EXPECT_TRUE(showsPills(kDarkPill));
    portal.type("light\n");
    EXPECT_TRUE(showsPills(kLightPill));
}

struct PanelCase {
    std::string name;
    Display::Manager manager;
    bool hasCompositor;
    int corner;  ///< of the window, from the pointer: 28, but for 10 of a shadow where there can be one
};

class PanelsTest : public DesktopTest, public testing::WithParamInterface<PanelCase> {
protected:
    /// Of the panel's plate beside the pointer, clear of what is written on it.
    int brightness(int pointerX, int pointerY) const {
        const auto pixel = display->pixel(pointerX + 28 + 5, pointerY + 28 + 5);
        return (pixel[0] + pixel[1] + pixel[2]) / 3;
    }
};

TEST_P(PanelsTest, ItFollowsThePointerAboveOtherWindowsAndLetsClicksThrough) {
    showScreen();
    display->startManager(GetParam().manager);
    if (GetParam().hasCompositor) {
        display->startCompositor();
    }
    Program portal({"/usr/bin/python3", GLINTAR_PORTAL}, environment(), Program::Output::Terminal);
    ASSERT_TRUE(portal.waitForOutput("ready")) << portal.output();
    preferences(fiveCoins() + "displayMode=1\n");
    auto program = start();
    ASSERT_TRUE(eventually([] { return placeOf("Glintar panel").has_value(); })) << program.errors();
    EXPECT_TRUE(eventually([&] { return log().contains("cardano"); }));
    for (const auto& [x, y] : {std::pair{500, 400}, std::pair{300, 200}}) {
        display->input({"mousemove", std::to_string(x), std::to_string(y)});
        EXPECT_TRUE(eventually([x, y] {
            const auto place = placeOf("Glintar panel");
            return place && place->x == x + GetParam().corner && place->y == y + GetParam().corner;
        }));
    }
    EXPECT_TRUE(eventually([&] { return brightness(300, 200) > 240; })) << "on the black screen";

    portal.type("dark\n");
    const auto isDark = [&] { return brightness(300, 200) < 60; };
    EXPECT_TRUE(eventually(isDark));
    const auto isWhite = [&] { return display->pixel(250, 250) == Pixel{255, 255, 255}; };
    Program other({"xev", "-geometry", "700x600+100+100", "-event", "button"}, environment());
    ASSERT_TRUE(eventually(isWhite));
    EXPECT_TRUE(eventually(isDark)) << "it is covered";
    program.signal(SIGSTOP);  // or it would make way for the pointer
    display->input({"mousemove", "333", "233", "click", "1"});
    EXPECT_TRUE(other.waitForOutput("root:(333,233)")) << other.output();
    program.signal(SIGCONT);
}

INSTANTIATE_TEST_SUITE_P(Panels, PanelsTest,
                         testing::Values(PanelCase{"OpenboxWithACompositor", Display::Manager::Openbox, true, 18},
                                         PanelCase{"Xfwm4Alone", Display::Manager::Xfwm4, false, 28},
                                         PanelCase{"Xfwm4WithACompositor", Display::Manager::Xfwm4, true, 18}),
                         [](const auto& test) { return test.param.name; });

TEST_F(DesktopTest, TheModeChangesWhileItRuns) {
    showScreen();
    display->startManager(Display::Manager::Openbox);
    preferences(fiveCoins() + "displayMode=0\n");
    auto program = start();
    ASSERT_TRUE(showsPills(kLightPill)) << program.errors();
    EXPECT_FALSE(placeOf("Glintar panel"));
    for (const bool hasPanel : {true, false, true}) {
        preferences(fiveCoins() + fmt::format("displayMode={}\n", hasPanel ? 1 : 0));
        EXPECT_TRUE(eventually([&] { return placeOf("Glintar panel").has_value() == hasPanel; })) << hasPanel;
        EXPECT_TRUE(showsPills(kLightPill, hasPanel ? 0 : 5)) << hasPanel;
    }
}

class SecondStartTest : public DesktopTest, public testing::WithParamInterface<Display::Bus> {};

TEST_P(SecondStartTest, ShowsTheMenuOfTheFirstWhoseQuitEndsIt) {
    display.emplace("1280x800x24", GetParam());
    display->startManager(Display::Manager::Openbox);
    auto first = start();
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << first.errors();
    const auto before = visibleWindows();
    auto second = start();
    EXPECT_EQ(second.wait(), 0) << second.errors();
    ASSERT_TRUE(eventually([&] { return visibleWindows() != before; })) << "no menu";
    display->input({"key", "Down", "Return"});
    EXPECT_EQ(first.wait(), 0);
    EXPECT_THAT(first.errors(), HasSubstr("Quit App clicked"));
}

INSTANTIATE_TEST_SUITE_P(SecondStarts, SecondStartTest, testing::Values(Display::Bus::Private, Display::Bus::None),
                         [](const auto& test) {
                             return test.param == Display::Bus::None ? "WithoutABus" : "WithABus";
                         });

TEST_F(DesktopTest, TheScreenGoingAwayEndsItWithOneLine) {
    showScreen();
    auto program = start();
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
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
    const TemporaryFolder home;
    const TemporaryFolder temporary;
    auto environment = this->environment();
    for (const auto* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        environment[name] = std::nullopt;
    }
    environment["HOME"] = home.path().string();
    environment["TMPDIR"] = temporary.path().string();
    const auto leftBehind = [&] {
        return outputOf({"find", home.path(), temporary.path(), "-mindepth", "1", "-iname", "*glintar*"});
    };
    Program program({GLINTAR_PROGRAM, "--demo"}, environment);
    EXPECT_TRUE(program.waitForErrors("none of these prices is real")) << program.errors();
    EXPECT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
    EXPECT_THAT(leftBehind(), Not(IsEmpty()));
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_THAT(leftBehind(), IsEmpty());
    EXPECT_THAT(program.errors(), Not(HasSubstr("检查列表更新")));
}

}  // namespace
}  // namespace glintar::test
