// What the desktop program's user sees, with the window managers and trays that there are.

#include "e2e/DesktopTest.h"

#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <thread>

namespace glintar::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using namespace std::chrono_literals;

/// With all of Xfce, or under a window manager alone with a tray of the older kind.
class DesktopsTest : public DesktopTest, public testing::WithParamInterface<bool> {
protected:
    /// How many pixels have the icon's blue, in the panel along the top edge or the tray in the bottom left corner.
    std::ptrdiff_t blueInTray() const {
        const auto pixels = GetParam() ? display->pixels(0, 0, 1280, 20) : display->pixels(0, 770, 100, 30);
        return std::ranges::count_if(pixels, [](const Pixel& p) { return p[0] < 60 && p[1] > 80 && p[2] > 130; });
    }
};

TEST_P(DesktopsTest, PillsStandInTheCornerAndTheIconInTheTray) {
    showScreen(GetParam() ? Display::Manager::Xfwm4 : Display::Manager::Openbox, GetParam());
    GetParam() ? display->startPanel() : display->startTray();
    const auto blueBefore = blueInTray();
    preferences(fiveCoins());
    auto program = start({});
    ASSERT_TRUE(showsPills(kLightPill)) << program.errors();
    const auto place = placeOfStrip();
    ASSERT_TRUE(place);
    EXPECT_EQ(place->right(), 1280);
    EXPECT_GE(place->y, GetParam() ? 20 : 0);
    EXPECT_LE(place->y, GetParam() ? 60 : 0);

    EXPECT_TRUE(eventually([&] { return blueInTray() > blueBefore + 50; })) << "no icon";

    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0) << program.errors();
    EXPECT_THAT(program.errors(), HasSubstr("[CoinList] 检查列表更新"));
}

INSTANTIATE_TEST_SUITE_P(Desktops, DesktopsTest, testing::Bool());

class SecondStartTest : public DesktopTest, public testing::WithParamInterface<Display::Bus> {};

TEST_P(SecondStartTest, ShowsDashboardSettingsOrMenuOfTheFirstWhoseQuitEndsIt) {
    showScreen(GetParam());
    display->startManager(Display::Manager::Openbox);
    EXPECT_EQ(start({"--dashboard"}).wait(), 0) << "there is none";
    auto first = start({});
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << first.errors();
    for (const bool isOpen : {true, false}) {
        EXPECT_EQ(start({"--dashboard"}).wait(), 0);
        EXPECT_TRUE(eventually([&] { return placeOf("Glintar dashboard").has_value() == isOpen; }));
    }
    EXPECT_EQ(start({"--settings"}).wait(), 0);
    EXPECT_TRUE(eventually([&] { return placeOf("Settings").has_value(); }));
    const auto before = visibleWindows();
    auto second = start({});
    EXPECT_EQ(second.wait(), 0) << second.errors();
    ASSERT_TRUE(eventually([&] { return visibleWindows() != before; })) << "no menu";
    display->input({"key", "Up", "Return"});
    EXPECT_EQ(first.wait(), 0);
    EXPECT_THAT(first.errors(), HasSubstr("Quit App clicked"));
    EXPECT_FALSE(std::filesystem::exists(display->home() / ".dbus")) << "a bus was started, which outlives us";
}

INSTANTIATE_TEST_SUITE_P(SecondStarts, SecondStartTest, testing::Values(Display::Bus::Private, Display::Bus::None),
                         [](const auto& test) {
                             return test.param == Display::Bus::None ? "WithoutABus" : "WithABus";
                         });

TEST_F(DesktopTest, SomethingElseThatStandsStillNeitherKeepsItFromStartingNorFromEnding) {
    enum class What { BusAtStart, BusAtEnd, Screen };
    for (const auto what : {What::BusAtStart, What::BusAtEnd, What::Screen}) {
        SCOPED_TRACE(static_cast<int>(what));
        showScreen(Display::Manager::Openbox);
        if (what == What::BusAtStart) {
            display->freezeBus();
        }
        auto program = start({});
        ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
        what == What::Screen ? display->freeze() : display->freezeBus();
        std::this_thread::sleep_for(300ms);  // until the countdown wants to be drawn
        const auto before = std::chrono::steady_clock::now();
        program.signal(SIGTERM);
        EXPECT_EQ(program.wait(), 0) << program.errors();
        EXPECT_LT(std::chrono::steady_clock::now() - before, what == What::Screen ? 3s : 1500ms);
    }
}

TEST_F(DesktopTest, ASignalEndsItWellHoweverEarlyItComes) {
    showScreen(Display::Manager::Openbox);
    for (int i = 0; i < 12; ++i) {
        auto program = start({});
        ASSERT_TRUE(eventually([&] { return catches(program, SIGTERM); }));
        std::this_thread::sleep_for(i * 4ms);
        program.signal(SIGTERM);
        EXPECT_EQ(program.wait(), 0) << program.errors();
    }
}

TEST_F(DesktopTest, TheScreenGoingAwayEndsItWithOneLine) {
    showScreen();
    auto program = start({});
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
    display->stop();
    EXPECT_EQ(program.wait(), 1);
    EXPECT_THAT(program.errors(), HasSubstr("the display has gone away"));
    EXPECT_THAT(program.errors(), Not(HasSubstr("X11 connection")));
}

TEST_F(DesktopTest, AScreenOutOfReachIsSaidSo) {
    for (const auto& [name, said] :
         {std::pair<std::optional<std::string>, std::string>{":9999", "display :9999"}, {std::nullopt, "$DISPLAY"}}) {
        auto where = environment();
        where["DISPLAY"] = name;
        Program program({GLINTAR_BUILD "/glintar-desktop"}, where);
        EXPECT_EQ(program.wait(), 1);
        EXPECT_THAT(program.errors(), HasSubstr(said));
    }
}

TEST_F(DesktopTest, TheDemonstrationNeedsNoProfileAndLeavesNoneBehind) {
    showScreen();
    const TemporaryFolder home;
    const TemporaryFolder temporary;
    Environment environment{{"HOME", home.path()}, {"TMPDIR", temporary.path()}};
    for (const auto* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        environment[name] = std::nullopt;
    }
    environment["QT_QPA_PLATFORM"] = "wayland";  // as users of Wayland set it for everything
    const auto leftBehind = [&] {
        return outputOf({"find", home.path(), temporary.path(), "-mindepth", "1", "-iname", "*glintar*"});
    };
    auto program = start({"--demo"}, environment);
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
