#include "benchmarks/Benches.h"
#include "benchmarks/DesktopScene.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Process.h"
#include "benchmarks/Profile.h"
#include "platform/xcb/XcbConnection.h"

#include <fmt/format.h>
#include <signal.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <thread>

namespace glintar::bench {

namespace {

using namespace std::chrono_literals;
using Seconds = std::chrono::duration<double>;
using Clock = std::chrono::steady_clock;

constexpr double kTicksASecond = 50;
constexpr auto kPointerStep = 8ms;  // as a mouse reports
constexpr auto kFewTicks = 6s;      // of the ten until the panel fades

/// Moves the pointer along a circle as long as it lives, or puts it into its middle.
class Hand {
public:
    Hand() : connection_(platform::XcbConnection::open()) {
        if (!connection_) {
            fmt::print(stderr, "bench: the screen cannot be reached\n");
            std::exit(1);
        }
    }

    void put(double x, double y) const {
        xcb_warp_pointer(connection_->get(), XCB_NONE, connection_->root(), 0, 0, 0, 0,
                         static_cast<std::int16_t>(std::lround(x)), static_cast<std::int16_t>(std::lround(y)));
        connection_->flush();
    }

    [[nodiscard]] std::jthread circle() const {
        return std::jthread([this](const std::stop_token& end) {
            auto next = Clock::now();
            for (int step = 0; !end.stop_requested(); ++step) {
                put(500 + 200 * std::cos(step / 50.0), 400 + 200 * std::sin(step / 50.0));
                next += kPointerStep;
                std::this_thread::sleep_until(next);
            }
        });
    }

private:
    std::unique_ptr<platform::XcbConnection> connection_;
};

struct Scene {
    explicit Scene(const std::string& programs)
        : profile(support::LoopbackServer::Transport::Tls, {.coins = 5, .displayMode = 1}) {
        scene.display().startManager(test::Display::Manager::Openbox);
        scene.display().startCompositor();
        floor.emplace(profile.command(programs + "/bench/glintar-bench-window", {"20"}, true));
        ours.emplace(profile.command(programs + "/glintar-desktop", {}, true));
        profile.waitForRefreshes(1);
        std::this_thread::sleep_for(2s);
    }

    /// Processor time of both over that time, in seconds.
    [[nodiscard]] Pair processorSeconds(Seconds time) const {
        const Pair before{ours->processorSeconds(), floor->processorSeconds()};
        std::this_thread::sleep_for(time);
        return {ours->processorSeconds() - before.ours, floor->processorSeconds() - before.floor};
    }

    DesktopScene scene;
    Profile profile;
    std::optional<Process> floor, ours;
};

/// Of all its threads, a second.
double systemCalls(const Process& process, Seconds time) {
    Process strace({"strace", "-f", "-c", "-U", "calls,name", "-p", fmt::format("{}", process.id())},
                   Process::Piped::Errors);
    for (auto line = strace.waitForLine(); !line.contains("attached"); line = strace.waitForLine()) {
        if (line.empty()) {
            fmt::print(stderr, "bench: strace may not look at our programs\n");
            std::exit(1);
        }
    }
    const auto start = Clock::now();
    std::this_thread::sleep_for(time);
    const Seconds passed = Clock::now() - start;
    strace.signal(SIGINT);
    double calls = 0;
    for (auto line = strace.waitForLine(); !line.empty(); line = strace.waitForLine()) {
        std::string name;
        std::istringstream words(line);
        if (double count = 0; words >> count >> name && name == "total") {
            calls = count;
        }
    }
    return calls / passed.count();
}

void benchTicks(const Scene& scene, const std::string& name, const std::function<void()>& moveOnce) {
    moveOnce();
    std::this_thread::sleep_for(500ms);
    const auto [ours, floor] = scene.processorSeconds(kFewTicks);
    const double ticks = kTicksASecond * Seconds(kFewTicks).count();
    printRow({fmt::format("panel, {}: processor time a tick", name), ours * 1e6 / ticks, floor * 1e6 / ticks,
              std::nullopt, "us", "empty tick"});
    moveOnce();
    std::this_thread::sleep_for(500ms);
    const double oursCalls = systemCalls(*scene.ours, 3s);
    const double floorCalls = systemCalls(*scene.floor, 3s);
    printRow({fmt::format("panel, {}: system calls a tick", name), oursCalls / kTicksASecond,
              floorCalls / kTicksASecond, std::nullopt, "", "empty tick"});
}

}  // namespace

void benchPanel(const std::string& programs, int minutes) {
    const Scene scene(programs);
    const Hand hand;
    double place = 400;
    const auto moveOnce = [&] { hand.put(++place, 400); };
    benchTicks(scene, "pointer still", moveOnce);
    const auto measureMinutes = [&](const std::string& name, double goal) {
        const auto [ours, floor] = scene.processorSeconds(std::chrono::minutes(minutes));
        printRow({fmt::format("panel, {}: processor time a minute", name), ours * 1e3 / minutes, floor * 1e3 / minutes,
                  goal, "ms", "50 Hz timer"});
    };
    if (minutes > 0) {
        moveOnce();
        measureMinutes("pointer still, fading after 10 s", 2);
    }
    const auto movement = hand.circle();
    benchTicks(scene, "pointer at 125 Hz", [] {});
    if (minutes > 0) {
        measureMinutes("pointer at 125 Hz", 3);
    }
}

}  // namespace glintar::bench
