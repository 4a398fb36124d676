#pragma once

#include "e2e/ProgramTest.h"
#include "support/Display.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>

namespace glintar::test {

constexpr int kLightPill = 230;
constexpr int kDarkPill = 38;
constexpr int kPillsOfTheProfile = 4;  // three coins and the network's fee

/// The desktop program on a screen of its own.
class DesktopTest : public ProgramTest {
protected:
    /// Five coins of the market, and a pill each.
    static std::string fiveCoins() {
        std::string coins;
        for (const auto* coin : {"bitcoin", "ethereum", "solana", "ripple", "cardano"}) {
            coins += fmt::format(
                R"({}{{\"id\":\"11111111-2222-4333-8444-{:012}\",\"displayName\":\"{:.3}\",\"apiId\":\"{}\"}})",
                coins.empty() ? "" : ",", coins.size(), coin, coin);
        }
        return fmt::format("savedCoins=\"@ByteArray([{}])\"\n", coins);
    }

    /// The profile's, on the test's own screen and bus.
    Environment environment() const override {
        auto environment = ProgramTest::environment();
        for (const auto* name : {"DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"}) {
            const char* value = std::getenv(name);
            environment[name] = value ? std::optional<std::string>(value) : std::nullopt;
        }
        environment["QT_ACCESSIBILITY"] = "0";
        return environment;
    }

    void showScreen(Display::Bus bus = Display::Bus::Private) { display.emplace("1280x800x24", bus); }

    void showScreen(Display::Manager manager, bool hasCompositor = false) {
        showScreen();
        display->startManager(manager);
        if (hasCompositor) {
            display->startCompositor();
        }
    }

    /// Dark or light, as it is told on its terminal.
    Program startPortal() const {
        return Program({"/usr/bin/python3", GLINTAR_PORTAL}, environment(), Program::Output::Terminal);
    }

    static std::optional<platform::Rect> placeOf(const std::string& title) {
        return Display::window(title).transform([](const SeenWindow& window) { return window.frame; });
    }

    /// Until it is there. Prices that arrive change its width.
    static std::optional<platform::Rect> placeOfStrip() {
        std::optional<platform::Rect> place;
        static_cast<void>(eventually([&] {
            place = placeOf("Glintar prices");
            return place && place->right() == 1280;
        }));
        return place;
    }

    /// How many pills of this grey stand in the strip.
    int pills(int grey) const {
        const auto place = placeOf("Glintar prices");
        if (!place || place->x < 0 || place->y < 0 || place->right() > 1280) {
            return 0;
        }
        int found = 0;
        int run = 0;
        // Above the texts and below the rim of the pills.
        for (const auto& pixel :
             display->pixels(int(place->x), int(place->y + place->height / 2) - 9, int(place->width), 1)) {
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

    std::optional<Display> display;
};

}  // namespace glintar::test
