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
    AppDelegate delegate{machine.platform(), desktop.desktop(), {.terminate = [] {}}};
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

}  // namespace
}  // namespace glintar::app
