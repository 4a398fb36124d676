// The desktop program as its user drives it, by keyboard and pointer, read as a screen reader reads it.

#include "e2e/DesktopTest.h"
#include "platform/secret/PrivateBus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <ranges>
#include <thread>

namespace glintar::test {
namespace {

using std::chrono::steady_clock;
using testing::HasSubstr;
using namespace std::chrono_literals;
using Words = std::vector<std::string>;

constexpr auto kStrip = "Glintar prices";
constexpr auto kDashboard = "Glintar dashboard";
constexpr auto kDiagnostics = "Network Diagnostics";
constexpr auto kSettings = "Settings";
constexpr auto kAlert = "Not Enough Display Space";

/// With a compositor or without one.
class OperateTest : public DesktopTest, public testing::WithParamInterface<bool> {
protected:
    ~OperateTest() override { readersBus.terminate(); }  // killed, it would leave a bus behind

    Environment environment() const override {
        auto environment = DesktopTest::environment();
        environment["QT_ACCESSIBILITY"] = "1";
        environment["LOCPATH"] = GLINTAR_LOCALES;  // prices have a point where the desktop writes a comma
        environment["LC_ALL"] = "de_DE.UTF-8";
        environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
        return environment;
    }

    /// A desktop with a screen reader's bus, for which Qt looks once, at the start.
    void showDesktop(bool hasCompositor) {
        showScreen(Display::Bus::None);
        bus.emplace();
        bus->start();
        readersBus = Child({"/usr/libexec/at-spi-bus-launcher", "--launch-immediately"});
        ASSERT_TRUE(eventually([] { return outputOf({"xprop", "-root", "AT_SPI_BUS"}).contains("unix:"); }));
        display->startManager(Display::Manager::Openbox);
        if (hasCompositor) {
            display->startCompositor();
        }
    }

    /// One operation of accessible.py.
    static void read(const std::string& operation, const std::string& window, const Words& names = {}) {
        Words command{"/usr/bin/python3", GLINTAR_ACCESSIBLE, operation, window};
        command.insert(command.end(), names.begin(), names.end());
        if (const auto complaint = outputOf(command); !complaint.empty()) {
            ADD_FAILURE() << fmt::format("{} {} {}: {}", operation, window, fmt::join(names, ", "), complaint);
        }
    }
    static void see(const std::string& window, const Words& names) { read("see", window, names); }
    static void press(const std::string& window, const std::string& name) { read("press", window, {name}); }

    void type(const Words& keys) const {
        Words words{"key", "--delay", "30"};
        words.insert(words.end(), keys.begin(), keys.end());
        display->input(words);
    }

    /// Of the menu that a click on the icon opens, the entry so many steps down; a step up is the last.
    enum Entry { Dashboard = 1, Settings = 2, Diagnostics = 3, Quit = -1 };
    void choose(Entry entry) const {
        openMenu();
        type(Words(static_cast<std::size_t>(std::abs(entry)), entry > 0 ? "Down" : "Up"));
        type({"Return"});
    }

    void openMenu() const {
        // The strip may still be growing to its prices: a click counts once its place is the same before and after.
        auto strip = placeOfStrip();
        ASSERT_TRUE(eventually([&] {
            std::this_thread::sleep_for(100ms);
            const auto last = std::exchange(strip, placeOfStrip());
            return strip && last && strip->x == last->x && strip->right() == last->right();
        }));
        const auto before = visibleWindows();
        display->input({"mousemove", std::to_string(int(strip->right()) - 14),
                        std::to_string(int(strip->y + strip->height / 2)), "click", "1"});
        ASSERT_TRUE(eventually([&] { return visibleWindows() != before; })) << "no menu";
    }

    std::optional<platform::PrivateBus> bus;
    Child readersBus;
};

TEST_P(OperateTest, TheMenuOpensWindowsThatKeysAndButtonsClose) {
    showDesktop(GetParam());
    auto program = start({"--demo"});
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
    choose(Dashboard);
    see(kDashboard, {"BTC", "ETH", "SOL", R"(\d+\.\d+)", R"(\d+\.\d+%)", "Close Window"});
    type({"Escape"});
    read("gone", kDashboard);
    choose(Dashboard);
    press(kDashboard, "Close Window");
    read("gone", kDashboard);

    choose(Diagnostics);
    see(kDiagnostics, {R"(CoinGecko \(simulated\) API)", "Copy", "Ready"});
    press(kDiagnostics, "Run Test");
    see(kDiagnostics, {R"(\d+ms)", "Run Test"});
    type({"Escape"});
    read("gone", kDiagnostics);

    choose(Quit);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_THAT(program.errors(), HasSubstr("Quit App clicked"));
}

TEST_P(OperateTest, PricesUnderAWindowOfferToMoveToThePointer) {
    showDesktop(GetParam());
    auto program = start({"--demo"});
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
    const Child other(
        {"xmessage", "-name", "other", "-geometry", "1280x60+0+0", "-xrm", "*overrideRedirect: true", "x"});
    EXPECT_TRUE(eventually([&] {
        program.signal(SIGUSR1);  // each refresh looks whether the line is seen; one within two seconds is dropped
        return placeOf(kAlert).has_value();
    }));
    see(kAlert, {kAlert, "Switch to Mouse Follow", "Open Settings", "OK"});
    EXPECT_FALSE(placeOf("Glintar panel"));
    press(kAlert, "Switch to Mouse Follow");
    read("gone", kAlert);
    EXPECT_TRUE(eventually([] { return placeOf("Glintar panel").has_value(); }));
}

INSTANTIATE_TEST_SUITE_P(Screens, OperateTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "WithACompositor" : "WithoutACompositor"; });

TEST_F(OperateTest, SettingsTakeEffectAsTheyAreMade) {
    showDesktop(false);
    bus->startKeyRing(platform::PrivateBus::Ring::Open);
    auto program = start({});
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
    choose(Settings);
    read("focus", kSettings, {R"(Crypto coin name \(eg. BTC\))"});
    display->input({"type", "--delay", "30", "dogeco"});
    see(kSettings, {R"(DOGE.*\(dogecoin\))"});
    type({"Down", "Return"});
    press(kSettings, "Add");
    see(kStrip, {R"(DOGE \d+\.\d+.*)"});

    press(kSettings, "Display");
    for (const bool hasPanel : {true, false}) {
        press(kSettings, hasPanel ? "Mouse Follow" : "Status Bar");
        EXPECT_TRUE(eventually([&] { return placeOf("Glintar panel").has_value() == hasPanel; })) << hasPanel;
    }
    const auto entry = session->configHome() / "autostart" / "org.glintar.Glintar.desktop";
    for (const bool isOn : {true, false}) {
        press(kSettings, "Launch at Login");
        EXPECT_TRUE(eventually([&] { return std::filesystem::exists(entry) == isOn; })) << isOn;
    }

    press(kSettings, "Data Source");
    read("focus", kSettings, {R"(CoinGecko .*API Key \(Optional\))"});
    display->input({"type", "--delay", "30", "CG-typed"});
    const auto requests = [&] {
        const auto all = log();
        return std::ranges::distance(all | std::views::split(std::string_view(" CG-typed\n"))) - 1;
    };
    EXPECT_TRUE(eventually([&] { return requests() > 0; })) << log();
    EXPECT_EQ(bus->itemCount("apiKey_coingecko"), 1U);
    // With a key it refreshes every 30 seconds, no longer every 60.
    auto before = requests();
    std::chrono::duration<double> pause{};
    for (auto since = steady_clock::now(); pause < 20s && steady_clock::now() - since < 50s;) {
        std::this_thread::sleep_for(100ms);
        if (const auto count = requests(); count != before) {
            before = count;
            pause = steady_clock::now() - std::exchange(since, steady_clock::now());
        }
    }
    EXPECT_NEAR(pause.count(), 30, 3);
}

TEST_F(OperateTest, AnOpenMenuHoldsUpNeitherRefreshNorEnd) {
    showDesktop(false);
    auto program = start({});
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
    openMenu();
    const auto windows = visibleWindows();
    preferences(fiveCoins());
    see(kStrip, {R"(CAR \d.*)"});
    EXPECT_EQ(visibleWindows(), windows) << "it stays open";
    program.signal(SIGTERM);
    const auto before = steady_clock::now();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_LT(steady_clock::now() - before, 2s);
}

TEST_F(OperateTest, CleaningTheCacheStartsItAnewInItsOwnPlace) {
    showDesktop(false);
    auto program = start({"--demo"});
    ASSERT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
    choose(Settings);
    press(kSettings, "About");
    press(kSettings, "Clean Cache & Restart");
    read("gone", kSettings);
    EXPECT_TRUE(showsPills(kLightPill, kPillsOfTheProfile)) << program.errors();
    EXPECT_EQ(outputOf({"xdotool", "search", "--name", kStrip, "getwindowpid"}), fmt::format("{}\n", program.id()));
    choose(Quit);
    EXPECT_EQ(program.wait(), 0);
}

}  // namespace
}  // namespace glintar::test
