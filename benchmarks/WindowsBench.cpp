// From a click to the window that it opens, and what memory stays when all windows are closed again.

#include "benchmarks/Benches.h"
#include "benchmarks/DesktopScene.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Process.h"
#include "benchmarks/Profile.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <set>
#include <thread>

namespace glintar::bench {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test::Display;

constexpr int kRounds = 15;
constexpr int kFirstRounds = 7;
constexpr int kOpenings = 20;
constexpr std::size_t kMany = 12;  // colours that only a text has, at its smooth edges

struct Opened {
    const char* title;
    int entry;  ///< of the menu
};
constexpr Opened kDashboard{"Glintar dashboard", 1};
constexpr Opened kSettings{"Settings", 2};
constexpr Opened kDiagnostics{"Network Diagnostics", 3};

void await(const std::function<bool()>& condition, const std::string& what) {
    if (!test::eventually(condition)) {
        fmt::print(stderr, "bench: {}\n", what);
        std::exit(1);
    }
}

/// xdotool that is up already, and does at once what it is told. It rests 100 ms after a click and 12 ms after a key,
/// unless it is told not to.
class Hand {
public:
    Hand() : told_(::popen("xdotool -", "we")) {}  // closed in others, or it never sees the end
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;
    ~Hand() { ::pclose(told_); }

    void operator()(const std::string& command) const {
        fmt::print(told_, "{}\n", command);
        std::fflush(told_);
    }

private:
    FILE* told_;
};

class Screen {
public:
    Screen() { scene_.display().startManager(Display::Manager::Openbox); }

    /// The pointer on the strip: on its icon, or on the prices.
    void point(bool isOnIcon) {
        std::optional<test::SeenWindow> strip;
        await([&] { return (strip = Display::window("Glintar prices")).has_value(); }, "no strip");
        hand(fmt::format("mousemove {} {}", strip->frame.right() - (isOnIcon ? 14 : 80), strip->frame.y + 14));
        std::this_thread::sleep_for(50ms);
    }

    /// Up to the key that opens the window.
    void walkMenu(int entry) {
        const auto windows = [] {
            return test::outputOf({"xdotool", "search", "--onlyvisible", "--class", "glintar"});
        };
        point(true);
        const auto before = windows();
        hand("click --delay 0 1");
        await([&] { return windows() != before; }, "no menu");
        for (int step = 0; step < entry; ++step) {
            hand("key --delay 0 Down");
        }
        std::this_thread::sleep_for(100ms);
    }

    void close(const char* title) {
        await([&] { return Display::window(title).has_value(); }, fmt::format("no window {}", title));
        std::this_thread::sleep_for(200ms);  // until it has the focus
        hand("key Escape");
        await([&] { return !Display::window(title); }, fmt::format("{} does not close", title));
    }

    void openAndClose(const Opened& window) {
        walkMenu(window.entry);
        hand("key Return");
        close(window.title);
    }

    /// Milliseconds from the last `command` to a text at that place.
    double untilText(const std::string& command, const platform::Rect& place) {
        const auto isText = [&] {
            std::set<test::Pixel> colors;
            for (const auto& pixel :
                 display().pixels(int(place.x), int(place.y), int(place.width), int(place.height))) {
                colors.insert(pixel);
            }
            return colors.size() >= kMany;
        };
        await([&] { return !isText(); }, "something is left on the screen");
        const auto start = Clock::now();
        hand(command);
        while (!isText()) {
            if (Clock::now() - start > 20s) {
                fmt::print(stderr, "bench: no text comes up\n");
                std::exit(1);
            }
        }
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    }

    Display& display() { return scene_.display(); }

private:
    DesktopScene scene_;

public:
    Hand hand;
};

/// The upper part of the window, in which there are texts from the beginning.
platform::Rect watched(const platform::Rect& frame) {
    return {frame.x + 4, frame.y + 4, std::min(frame.width - 8, 200.0), std::min(frame.height - 8, 60.0)};
}

/// `isFirst`: of programs that have just been started, since ours keeps the window that it has made.
void benchOpening(const std::string& programs, const Opened& window, const std::string& name, bool isFirst) {
    Screen screen;
    const Profile profile(support::LoopbackServer::Transport::Plain, {.coins = 5});
    std::optional<Process> ours, peer;
    std::size_t starts = 0;
    const auto startOurs = [&] {
        ours.reset();
        ours.emplace(profile.command(programs + "/glintar-desktop", {}, true));
        profile.waitForRefreshes(++starts);
        std::this_thread::sleep_for(1s);
    };
    startOurs();
    screen.walkMenu(window.entry);
    screen.hand("key Return");
    await([&] { return Display::window(window.title).has_value(); }, "no window");
    std::this_thread::sleep_for(500ms);
    const auto frame = Display::window(window.title)->frame;
    screen.close(window.title);

    std::vector<double> oursTimes, floorTimes;
    for (int round = 0; round <= (isFirst ? kFirstRounds : kRounds); ++round) {
        if (isFirst) {
            startOurs();
        }
        screen.walkMenu(window.entry);
        const double oursTime = screen.untilText("keydown Return", watched(frame));
        screen.hand("keyup Return");
        screen.close(window.title);
        if (isFirst || !peer) {
            peer.reset();
            peer.emplace(profile.command(programs + "/bench/glintar-bench-window",
                                         {"open", window.title, fmt::format("{}", frame.x), fmt::format("{}", frame.y),
                                          fmt::format("{}", frame.width), fmt::format("{}", frame.height)},
                                         true));
            await([] { return Display::window("Glintar bench").has_value(); }, "no bare window");
            std::this_thread::sleep_for(1s);
        }
        screen.hand("mousemove 10 790");
        screen.hand("mousedown 1");
        std::this_thread::sleep_for(50ms);
        const double floorTime = screen.untilText("mouseup 1", watched(frame));
        screen.close("Bare");
        if (round > 0) {
            oursTimes.push_back(oursTime);
            floorTimes.push_back(floorTime);
        }
    }
    printRow({fmt::format("{}{}, from the menu to its first text", name, isFirst ? " for the first time" : ""),
              median(oursTimes), median(floorTimes), 1.3, "ms", "bare window"});
}

void benchMemory(const std::string& programs) {
    Screen screen;
    const Profile profile(support::LoopbackServer::Transport::Tls, {.coins = 5, .hasIcons = true});
    const Process ours(profile.command(programs + "/glintar-desktop", {}, true));
    profile.waitForRefreshes(1);
    std::this_thread::sleep_for(5s);
    const double before = ours.proportionalBytes() / 1e6;
    const auto now = [&] {
        std::this_thread::sleep_for(2s);
        return ours.proportionalBytes() / 1e6;
    };
    screen.openAndClose(kDashboard);
    screen.openAndClose(kDiagnostics);
    printRow({"memory after dashboard and diagnostics", now(), before, 1.2, "MB", "before"});
    screen.openAndClose(kSettings);
    const double once = now();
    printRow({"memory after every window, once", once, before, 1.25, "MB", "before"});
    for (int opening = 1; opening < kOpenings; ++opening) {
        for (const auto& window : {kDashboard, kDiagnostics, kSettings}) {
            screen.openAndClose(window);
        }
    }
    printRow(
        {fmt::format("memory gained from the first to the {}th opening", kOpenings), now() - once, 0, 0.5, "MB", ""});
}

}  // namespace

void benchWindows(const std::string& programs) {
    benchOpening(programs, kDashboard, "dashboard", false);
    benchOpening(programs, kSettings, "settings", true);
    benchMemory(programs);
}

}  // namespace glintar::bench
