#include "app/AppDelegate.h"
#include "app/Arguments.h"
#include "app/Deployment.h"
#include "platform/DesktopEvents.h"
#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gmock/gmock.h>

#include <vector>

namespace glintar::app {
namespace {

using namespace std::chrono_literals;

struct Launched {
    explicit Launched(int displayMode) {
        test::ship(machine);
        test::saveCoins(machine.preferences, {test::coin("BTC", "bitcoin")});
        machine.preferences.setInteger("displayMode", displayMode);
        delegate.applicationDidFinishLaunching();
    }

    platform::VirtualPlatform machine;
    platform::VirtualDesktop desktop{machine.notifications};
    settings::settingsViewModel* settings = nullptr;
    AppDelegate delegate{machine.platform(),
                         desktop.desktop(),
                         {.views = {.dashboard = [](auto&) { return std::make_unique<platform::View>(); },
                                    .diagnostics = [](auto&) { return std::make_unique<platform::View>(); },
                                    .settings =
                                        [this](settings::settingsViewModel& model) {
                                            settings = &model;
                                            return std::make_unique<platform::View>();
                                        }},
                          .terminate = [] {}}};
};

TEST(AppDelegateTest, TheDisplayModeHoldsFromTheFirstPictureOn) {
    for (const int mode : {0, 1}) {
        Launched program(mode);
        EXPECT_EQ(program.desktop.statusBar.items.at(1)->isVisible, mode == 0);
        EXPECT_EQ(program.desktop.windows.overlays.size(), mode == 1 ? 1U : 0U);
    }
}

constexpr std::string_view kAnswer = R"([{"id":"bitcoin","current_price":64000,"image":"https://icons.test/b.png"}])";

TEST(AppDelegateTest, ADayOfRefreshesFailuresAndThemesLeavesNothingBehind) {
    Launched program(0);
    auto& machine = program.machine;
    machine.secrets.add("apiKey_coingecko", "GlintarUser", "CG-1");  // every 30 seconds
    machine.preferences.setBoolean("showGasFee", true);
    const auto observers = machine.notifications.observers();
    for (int hour = 0; hour < 24; ++hour) {
        for (const int status : {200, 500, 429, 404}) {
            machine.http.answer("gecko.test", "<html>", status);
            machine.advance(10min);
        }
        machine.http.answer("gecko.test", std::string(kAnswer));
        machine.advance(20min);
        machine.notifications.post(platform::kAppearanceChanged);
        machine.runLoop.settle();
        EXPECT_LT(machine.runLoop.pending(), 10) << "hour " << hour;
        EXPECT_LE(machine.notifications.observers(), observers + 2) << "the engine's own, since the first refresh";
        machine.console.lines.clear();
    }
    EXPECT_GT(machine.http.asked("gecko.test"), 2'500) << "it was a day";
    EXPECT_EQ(program.desktop.statusBar.items.size(), 2U);
}

TEST(AppDelegateTest, AnIconThatArrivesIsShownAtOnce) {
    Launched program(0);
    program.machine.http.answer("gecko.test", std::string(kAnswer));
    program.machine.http.answer("icons.test", "image 9x9 arrived");
    program.machine.advance(5s);
    const auto& pill = std::get<platform::PictureRun>(program.desktop.statusBar.items.at(1)->title.at(0));
    const auto images = platform::drawn(pill.image).all(platform::Drawn::Kind::Image);
    ASSERT_EQ(images.size(), 1U);
    EXPECT_EQ(images[0].text, "arrived");
}

TEST(AppDelegateTest, ThePanelShowsThePrices) {
    Launched program(1);
    program.machine.http.answer("gecko.test", std::string(kAnswer));
    program.machine.advance(5s);
    const auto layers =
        platform::drawn(program.desktop.windows.overlays.at(0)->picture).all(platform::Drawn::Kind::Image);
    const auto texts = layers.back().image->all(platform::Drawn::Kind::Text);
    EXPECT_TRUE(std::ranges::any_of(texts, [](const auto& text) { return text.text == "64000.00"; }));
}

TEST(AppDelegateTest, TheKeyIsLookedUpAfterTheFirstPictureAndBeforeTheCatalogueIsChecked) {
    Launched program(0);
    EXPECT_EQ(program.machine.console.count("[Timer]"), 0);
    program.machine.advance(2s);
    const auto& lines = program.machine.console.lines;
    const auto at = [&](std::string_view part) {
        return std::ranges::find_if(lines, [&](const auto& line) { return line.text.contains(part); }) - lines.begin();
    };
    EXPECT_LT(at("[Timer]"), at("[CoinList]"));
    EXPECT_LT(at("[CoinList]"), std::ssize(lines));
}

TEST(AppDelegateTest, ThereIsOneSettingsWindowWhichKeepsWhatItShowed) {
    Launched program(0);
    const auto& windows = program.desktop.windows.windows;
    program.machine.notifications.post("SwitchToDisplayTab");
    EXPECT_TRUE(windows.empty());
    program.delegate.applicationWasReopened(Opens::Settings);
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_EQ(windows[0]->title, "Settings");
    EXPECT_EQ(program.settings->selectedTab, "coins");
    program.settings->close();
    EXPECT_FALSE(windows[0]->isVisible);
    program.machine.notifications.post("RequestOpenDisplaySettings");
    EXPECT_TRUE(windows[0]->isVisible);
    EXPECT_EQ(program.settings->selectedTab, "coins");
    program.machine.advance(100ms);
    EXPECT_EQ(program.settings->selectedTab, "displaymode");
    EXPECT_EQ(windows.size(), 1U);
}

TEST(AppDelegateTest, MenuAndLineOpenTheirWindows) {
    Launched program(0);
    program.machine.http.answer("gecko.test", std::string(kAnswer));
    program.machine.advance(5s);
    const auto choose = [&](std::string_view title) {
        const auto menu = program.desktop.statusBar.items.at(0)->menu;
        std::ranges::find(menu, title, &platform::MenuItem::title)->action();
    };
    const auto& windows = program.desktop.windows.windows;
    choose("Arbitrage Dashboard");
    choose("Network Diagnostics");
    choose("Settings");
    std::vector<std::string> titles;
    for (const auto& window : windows) {
        titles.push_back(window->isVisible ? window->title : "");
    }
    EXPECT_THAT(titles, testing::ElementsAre("Glintar dashboard", "Network Diagnostics", "Settings"));
    program.desktop.statusBar.items.at(1)->item->onMouseUp(platform::MouseButton::Right);
    EXPECT_FALSE(windows[0]->isVisible) << "a click on the line closes the dashboard";
    choose("Check for Updates...");
    EXPECT_EQ(program.desktop.windows.alerts.size(), 1U);
}

TEST(AppDelegateTest, ADemonstrationLeavesTheLoginItemAndTheReleaseFeedAlone) {
    for (const bool isDemo : {false, true}) {
        platform::VirtualPlatform machine;
        platform::VirtualDesktop desktop{machine.notifications};
        AppDelegate delegate(machine.platform(), desktop.desktop(),
                             {.isDemo = isDemo, .releaseFeed = "https://feed.test/", .terminate = [] {}});
        delegate.applicationDidFinishLaunching();
        machine.advance(1s);
        EXPECT_EQ(desktop.loginItem.repairs, isDemo ? 0 : 1);
        EXPECT_EQ(machine.http.asked("feed.test"), isDemo ? 0 : 1);
    }
}

TEST(ArgumentsTest, MeanWhatTheySay) {
    static constexpr std::array kCommands{"desktop", "line", "compare", "diagnose", "settings", "help", "version"};
    struct Row {
        std::vector<const char*> arguments;
        std::string expected;  ///< command, format, once, demo; or "refused"
    };
    for (const auto& [arguments, expected] :
         {Row{{}, "desktop"},
          Row{{"--once", "line"}, "line once"},
          Row{{"--demo"}, "desktop demo"},
          Row{{"line"}, "line"},
          Row{{"--demo", "line"}, "line demo"},
          Row{{"line", "--once", "--format", "json", "--demo"}, "line json once demo"},
          Row{{"line", "--format=json"}, "line json"},
          Row{{"line", "--format=json", "--format", "text"}, "line"},
          Row{{"line", "--help"}, "help"},
          Row{{"--version"}, "version"},
          Row{{"lien"}, "refused"},
          Row{{"line", "--twice"}, "refused"},
          Row{{"--once"}, "refused"},
          Row{{"line", "line"}, "refused"},
          Row{{"line", "--format"}, "refused"},
          Row{{"line", "--format", "xml"}, "refused"},
          Row{{"line", "--format", "genmon", "--fields", "price,fee", "--coin=a,b"}, "line once price fee only a,b"},
          Row{{"line", "--fields", "price,cost"}, "refused"},
          Row{{"line", "--coin"}, "refused"},
          Row{{"compare", "--format", "waybar"}, "refused"},
          Row{{"--coin", "bitcoin"}, "refused"},
          Row{{"line", "--formatted"}, "refused"},
          Row{{""}, "refused"},
          Row{{"compare", "--format", "json"}, "compare json"},
          Row{{"--demo", "diagnose"}, "diagnose demo"},
          Row{{"compare", "--once"}, "refused"},
          Row{{"--format", "json"}, "refused"},
          Row{{"--settings"}, "desktop settings"},
          Row{{"--dashboard"}, "desktop dashboard"},
          Row{{"compare", "--settings"}, "refused"},
          Row{{"--demo", "coins", "list"}, "refused"},
          Row{{"--", "line"}, "line"},
          Row{{"--", "--demo"}, "refused"},
          Row{{"coins", "add", "--", "--help"}, "settings coins add -- --help"},
          Row{{"coins", "add", "--ref"}, "settings coins add --ref"}}) {
        const auto parsed = parseArguments(arguments);
        std::string text = "refused";
        if (parsed) {
            text = kCommands.at(static_cast<std::size_t>(parsed->command));
            text += parsed->format == Format::Json ? " json" : "";
            text += parsed->once ? " once" : "";
            text += parsed->demo ? " demo" : "";
            text += parsed->opens == Opens::Settings    ? " settings"
                    : parsed->opens == Opens::Dashboard ? " dashboard"
                                                        : "";
            for (const auto word : parsed->words) {
                (text += ' ') += word;
            }
            text += parsed->fields && parsed->fields->price ? " price" : "";
            text += parsed->fields && parsed->fields->change ? " change" : "";
            text += parsed->fields && parsed->fields->fee ? " fee" : "";
            text += parsed->coin ? " only " + *parsed->coin : "";
        }
        EXPECT_EQ(text, expected) << testing::PrintToString(arguments);
    }
}

TEST(DeploymentTest, AConfigurationServerIsSecureOrThisMachine) {
    struct Row {
        const char* address;
        bool isAccepted;
    };
    for (const auto& [address, isAccepted] :
         {Row{"", true}, Row{"https://config.example/glintar", true}, Row{"https://config.example:8443", true},
          Row{"http://127.0.0.1:8080/x", true}, Row{"http://localhost:1", true}, Row{"http://[::1]:1/a", true},
          Row{"HTTPS://config.example", true}, Row{"http://config.example", false},
          Row{"http://localhost.example", false}, Row{"http://127.0.0.1.example", false},
          Row{"http://127.0.0.1@config.example", false}, Row{"https://config.example/", false},
          Row{"https://config.example?a=b", false}, Row{"ftp://config.example", false}, Row{"config.example", false},
          Row{"https://", false}, Row{"https://config example", false}}) {
        const auto server = app::configServer(address);
        EXPECT_EQ(server.has_value(), isAccepted) << address;
        EXPECT_EQ(server.value_or(""), isAccepted ? address : "");
    }
    const char* const builtIn = "https://built.in";
    EXPECT_EQ(app::configServer(std::nullopt, builtIn), builtIn);
    EXPECT_EQ(app::configServer("https://named.example", builtIn), "https://named.example");
    EXPECT_EQ(app::configServer("", builtIn), "") << "whoever wants none can say so";
}

}  // namespace
}  // namespace glintar::app
