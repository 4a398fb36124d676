#pragma once

#include "config/Settings.h"
#include "platform/virtual/VirtualPlatform.h"
#include "presenter/StatusBarController.h"
#include "presenter/StatusSurface.h"
#include "support/Market.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace glintar::presenter {

using namespace std::chrono_literals;

/// Remembers what the presenter wanted seen.
class RecordedSurface final : public StatusSurface {
public:
    void showLine(const StatusLine& shown, std::optional<std::string> text) override {
        line = shown;
        ++linesShown;
        if (text) {
            tooltip = *text;
        }
    }
    void show(DisplayMode shown) override { mode = shown; }
    void refreshCompleted() override {
        ++completed;
        if (onCompleted) {
            onCompleted();
        }
    }
    bool showsProgress() const override { return hasProgress; }
    platform::Seconds showProgress(const RefreshProgress& countdown) override {
        progress.push_back(countdown.elapsed);
        return unchangedFor;
    }
    bool canBeCovered() const override { return true; }
    void checkVisibility() override { ++visibilityChecks; }
    void updatePanel(PanelData data) override { panels.push_back(std::move(data)); }
    void updateDashboardItem(std::string_view title, bool enabled) override { dashboard = enabled ? title : ""; }

    StatusLine line;
    std::string tooltip, dashboard;
    int linesShown = 0, completed = 0, visibilityChecks = 0;
    std::optional<DisplayMode> mode;
    bool hasProgress = false;
    platform::Seconds unchangedFor{0.1};
    std::vector<double> progress;
    std::vector<PanelData> panels;
    std::function<void()> onCompleted;
};

class RefreshCycleTest : public testing::Test {
protected:
    RefreshCycleTest() {
        test::ship(machine);
        save({test::coin("BTC", "bitcoin")});
        machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 64000));
        machine.http.answer("eth.test", R"({"result":{"average":12}})");
        machine.http.answer("btc.test", R"({"halfHourFee":7})");
    }

    void save(const std::vector<config::Coin>& coins) { test::saveCoins(machine.preferences, coins); }

    /// Starts the presenter and lets its first refresh pass.
    void begin() {
        make();
        controller->show();
        controller->start();
        machine.advance(2s);
    }

    void make() { controller.emplace(machine.platform(), surface, StatusBarController::Options{}); }

    void showGas(int source) {
        machine.preferences.setBoolean("showGasFee", true);
        machine.preferences.setInteger("gasSource", source);
    }

    void displaySettingsSaved() {
        machine.notifications.post(config::kDisplaySettingsChanged);
        machine.advance(1s);
    }

    int quotesAsked() const { return machine.http.asked("gecko.test"); }

    std::vector<std::string> shownPrices() const {
        std::vector<std::string> prices;
        for (const auto& part : surface.line.coins) {
            prices.push_back(part.price);
        }
        return prices;
    }

    platform::VirtualPlatform machine;
    RecordedSurface surface;
    std::optional<StatusBarController> controller;
};

}  // namespace glintar::presenter
