// What stands on the screen while the desktop program starts.

#include "app/AppDelegate.h"
#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
                         {.makeSettingsView =
                              [this](settings::settingsViewModel& model) {
                                  settings = &model;
                                  return std::make_unique<platform::View>();
                              },
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
    program.delegate.applicationWasReopened(true);
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

}  // namespace
}  // namespace glintar::app
