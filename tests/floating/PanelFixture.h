#pragma once

#include "config/Settings.h"
#include "floating/FloatingPriceController.h"
#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualPlatform.h"
#include "presenter/RefreshState.h"
#include "support/Market.h"

#include <gtest/gtest.h>

#include <chrono>

namespace glintar::floating {

using namespace std::chrono_literals;
using platform::Point;
using platform::Rect;

/// A panel on a desktop in memory.
class PanelFixture : public testing::Test {
protected:
    platform::VirtualOverlay& window() { return *desktop.windows.overlays.at(0); }
    void ticks(int count) { machine.advance(count * 20ms); }
    void follow(Point pointer) {
        desktop.pointer.at = pointer;
        ticks(1);
    }
    void fadeAway() { ticks(520); }
    void update(int coins, platform::Duration until = 60s) {
        std::vector<config::Coin> list;
        market::MarketDataMap quotes;
        for (int i = 0; i < coins; ++i) {
            list.push_back(test::coin("BTC", fmt::format("coin{}", i)));
            quotes[list.back().apiId].price = 7;
        }
        controller.updateData(list, quotes, std::nullopt, machine.runLoop.now() + until);
    }
    /// What happens whenever the settings are saved: two notices, of which the second shows or hides what the display
    /// mode says.
    void settingsSaved() {
        const bool isChosen = window().isShown();
        machine.notifications.post(config::kDisplaySettingsChanged);
        isChosen ? controller.showPanel() : controller.hidePanel();
    }
    /// Degrees of the ring, clockwise.
    double sweep() {
        const auto arcs = platform::drawn(window().picture).all(platform::Drawn::Kind::Arc);
        return arcs.empty() ? 0 : -arcs[0].arc.sweep;
    }
    Point topLeft() { return {window().frame().x, window().frame().top()}; }

    platform::VirtualPlatform machine;
    platform::VirtualDesktop desktop{machine.notifications};
    FloatingPriceController controller{machine.platform(), desktop.desktop()};
};

}  // namespace glintar::floating
