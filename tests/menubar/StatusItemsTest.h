#pragma once

#include "config/Settings.h"
#include "menubar/CoinIcons.h"
#include "menubar/StatusItems.h"
#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gmock/gmock.h>

#include <chrono>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace glintar::menubar {

using namespace std::chrono_literals;

/// Work that waits until the test lets it run.
class HeldWork final : public platform::WorkQueue {
public:
    void async(platform::Task task) override { waiting.push_back(std::move(task)); }
    void asyncAfter(platform::Duration, platform::Task task) override { async(std::move(task)); }

    void run() {
        for (auto& task : std::exchange(waiting, {})) {
            task();
        }
    }
    void runLastFirst() {
        std::ranges::reverse(waiting);
        run();
    }
    /// Each on a thread of its own, all from one moment on.
    void runTogether() {
        std::latch start(static_cast<std::ptrdiff_t>(waiting.size()));
        std::vector<std::jthread> threads;
        for (auto& task : waiting) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                task();
            });
        }
        threads.clear();
        waiting.clear();
    }

    std::vector<platform::Task> waiting;
};

/// The items in a virtual status bar, shown what a presenter would show.
class StatusItemsTest : public testing::Test {
protected:
    void SetUp() override { make(); }

    void make() {
        items.emplace(
            platform, desktop.desktop(),
            StatusItems::Callbacks{.redisplay =
                                       [this] {
                                           ++redisplays;
                                           if (!quotes.empty()) {
                                               show();
                                           }
                                       },
                                   .pricePanelClicked = [this] { done += "line "; },
                                   .menu = {.openArbiterFromMenu = [this] { done += "dashboard "; },
                                            .openNetworkDiagnosticsWindow = [this] { done += "diagnostics "; },
                                            .quitApp = [this] { done += "quit "; }}});
    }

    /// Adds a coin at 1.50 to the line.
    void add(const std::string& id, std::optional<std::string> imageUrl = std::nullopt) {
        coins.push_back(test::coin(id, id));
        quotes[id] = {.price = 1.5, .imageUrl = std::move(imageUrl)};
    }

    /// Hands the line to the items, without letting work run.
    void show(std::optional<std::string> tooltip = std::nullopt) {
        items->renderStatusItem(presenter::composeStatusLine(config::Settings::load(machine.preferences), coins, quotes,
                                                             gas, presenter::Outcome{.error = error}),
                                std::move(tooltip));
    }

    /// Lets everything happen that was begun, answers of the network included.
    void settle() {
        do {
            work.run();
            machine.advance(1s);
        } while (!work.waiting.empty());
    }

    /// How many pictures that took.
    int drawingsToShow() {
        const int before = desktop.graphics.drawings;
        show();
        settle();
        return desktop.graphics.drawings - before;
    }

    void saveIconOf(const std::string& id) { machine.files.contents[kFolder / (id + ".png")] = "image 64x64 saved"; }

    const platform::ItemState& anchor() const { return *desktop.statusBar.items.at(0); }
    const platform::ItemState& display() const { return *desktop.statusBar.items.at(1); }

    /// The pills that are shown, by what they say to those who cannot see them.
    std::vector<const platform::PictureRun*> pills() const {
        std::vector<const platform::PictureRun*> found;
        for (const auto& run : display().title) {
            if (const auto* picture = std::get_if<platform::PictureRun>(&run)) {
                found.push_back(picture);
            }
        }
        return found;
    }
    std::vector<std::string> descriptions() const {
        std::vector<std::string> texts;
        for (const auto* pill : pills()) {
            texts.push_back(pill->description);
        }
        return texts;
    }

    /// Names of the icons in the pills; empty for a badge.
    std::vector<std::string> icons() const {
        std::vector<std::string> names;
        for (const auto* pill : pills()) {
            const auto images = platform::drawn(pill->image).all(platform::Drawn::Kind::Image);
            names.push_back(images.empty() ? "" : images[0].text);
        }
        return names;
    }

    static inline const std::filesystem::path kFolder = "/home/u/cache/CoinIcons";

    platform::VirtualPlatform machine;
    HeldWork work;
    platform::Platform platform{
        machine.runLoop,     work,           machine.http,  machine.preferences, machine.secrets, machine.notifications,
        machine.directories, machine.bundle, machine.files, machine.console,     machine.entropy, machine.localTime,
        machine.registry};
    platform::VirtualDesktop desktop{machine.notifications};
    std::vector<config::Coin> coins;
    market::MarketDataMap quotes;
    std::optional<double> gas;
    std::optional<std::string> error;
    int redisplays = 0;
    std::string done;  ///< what was asked of the program
    std::optional<StatusItems> items;
};

}  // namespace glintar::menubar
