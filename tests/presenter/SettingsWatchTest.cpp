// Settings that another process has written.

#include "config/Settings.h"
#include "platform/virtual/VirtualPlatform.h"
#include "presenter/SettingsWatch.h"
#include "support/Market.h"

#include <gmock/gmock.h>

namespace glintar::presenter {
namespace {

using platform::VirtualPreferences;
using testing::ElementsAre;
using testing::IsEmpty;

struct Written {
    std::string what;
    void (*write)(VirtualPreferences&);
    std::vector<std::string> told;
};

class SettingsWatchTest : public testing::Test {
protected:
    SettingsWatchTest() {
        for (const auto name : {config::kDisplaySettingsChanged, config::kDisplayModeChanged, config::kCoinsUpdated}) {
            observations.push_back(machine.notifications.observe(name, [this, name] { told.emplace_back(name); }));
        }
    }

    platform::VirtualPlatform machine;
    std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> observations;
    std::vector<std::string> told;
};

TEST_F(SettingsWatchTest, CountAsIfTheyHadBeenSavedHere) {
    const SettingsWatch watch(machine.platform());
    const std::string display(config::kDisplaySettingsChanged), mode(config::kDisplayModeChanged);
    const std::string coins(config::kCoinsUpdated);
    for (const auto& [what, write, expected] : {
             Written{"nothing", [](auto&) {}, {}},
             Written{"fee", [](auto& p) { p.setBoolean("showGasFee", true); }, {display}},
             Written{"network", [](auto& p) { p.setInteger("gasSource", 1); }, {display}},
             Written{"change", [](auto& p) { p.setBoolean("showChange24h", true); }, {display}},
             Written{"range", [](auto& p) { p.setBoolean("showHighLow24h", true); }, {display}},
             Written{"sparkline", [](auto& p) { p.setBoolean("showSparkline", true); }, {display}},
             Written{"plate", [](auto& p) { p.setBoolean("floatTransparent", true); }, {display}},
             Written{"distance", [](auto& p) { p.setReal("floatOffset", 40); }, {display}},
             Written{"mode", [](auto& p) { p.setInteger("displayMode", 1); }, {mode}},
             Written{"source", [](auto& p) { p.setString("selectedSourceID", "binance"); }, {coins}},
             Written{"coins", [](auto& p) { test::saveCoins(p, {test::coin("ETH", "ethereum")}); }, {coins}},
             Written{"all",
                     [](auto& p) {
                         p.setString("selectedSourceID", "gate");
                         p.setInteger("displayMode", 0);
                         p.setReal("floatOffset", 50);
                     },
                     {display, mode, coins}},
         }) {
        told.clear();
        write(machine.preferences);
        machine.preferences.onExternalChange();
        EXPECT_EQ(told, expected) << what;
        machine.preferences.onExternalChange();
        EXPECT_EQ(told, expected) << what << ": once is enough";
    }
}

TEST_F(SettingsWatchTest, AKeyThatAppearsInTheKeyRingCountsToo) {
    {
        const SettingsWatch watch(machine.platform());
        machine.secrets.onChange();
        EXPECT_THAT(told, ElementsAre(config::kCoinsUpdated));
    }
    EXPECT_FALSE(machine.secrets.onChange) << "nobody is called who is gone";
    EXPECT_FALSE(machine.preferences.onExternalChange);
}

}  // namespace
}  // namespace glintar::presenter
