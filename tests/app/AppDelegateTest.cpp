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
