#include "benchmarks/Benches.h"
#include "benchmarks/DesktopScene.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Process.h"
#include "benchmarks/Profile.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

namespace glintar::bench {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kRefreshes = 10;

/// Ten refreshes with their pictures, without waiting ten minutes for them.
void refreshTenTimes(Profile& profile) {
    profile.waitForRefreshes(1);
    for (std::size_t refresh = 2; refresh <= kRefreshes; ++refresh) {
        std::this_thread::sleep_for(700ms);
        profile.setReferencePrice(static_cast<double>(refresh));
        profile.waitForRefreshes(refresh);
    }
    std::this_thread::sleep_for(2s);
}

void benchMemory(const std::string& programs, const std::string& desktop, const std::string& name) {
    DesktopScene scene;
    scene.display().startManager(test::Display::Manager::Openbox);
    Profile profile(support::LoopbackServer::Transport::Tls, {.coins = 5, .hasIcons = true});
    Process peer(profile.command(programs + "/bench/glintar-bench-window",
                                 {"0", profile.url(), programs + "/bench/glintar-bench-requests.so"}, true, desktop));
    if (peer.waitForLine() != "ready\n") {
        fmt::print(stderr, "bench: the bare window could not make its request or its look-up\n");
        std::exit(1);
    }
    const Process ours(profile.command(programs + "/glintar-desktop", {}, true, desktop));
    refreshTenTimes(profile);
    printRow({fmt::format("desktop, {}: proportional memory after ten refreshes", name), ours.proportionalBytes() / 1e6,
              peer.proportionalBytes() / 1e6, 1.15, "MB", "bare window"});
}

/// A bar with one script, which writes a line a second.
class Polybar {
public:
    Polybar() : process_({"polybar", "--config=" + writeConfiguration(), "bench"}) {}
    [[nodiscard]] double processorSeconds() const { return process_.processorSeconds(); }

private:
    std::string writeConfiguration() {
        const auto path = folder_.path() / "config.ini";
        std::ofstream(path) << "[bar/bench]\nwidth = 100%\nheight = 24\nbottom = true\nmodules-left = price\n"
                               "[module/price]\ntype = custom/script\ntail = true\n"
                               "exec = while sleep 1; do echo \"BTC 64012.55\"; done\n";
        return path.string();
    }

    test::TemporaryFolder folder_;
    Process process_;
};

void benchMinute(const std::string& programs, int minutes) {
    DesktopScene scene;
    scene.display().startManager(test::Display::Manager::Openbox);
    const Profile profile(support::LoopbackServer::Transport::Tls, {.coins = 5, .hasIcons = true});
    const Polybar polybar;
    const Process peer(profile.command(programs + "/bench/glintar-bench-window", {"100"}, true));
    const Process ours(profile.command(programs + "/glintar-desktop", {}, true));
    profile.waitForRefreshes(1);
    std::this_thread::sleep_for(5s);
    const double oursBefore = ours.processorSeconds();
    const double peerBefore = peer.processorSeconds();
    const double polybarBefore = polybar.processorSeconds();
    std::this_thread::sleep_for(std::chrono::minutes(minutes));
    const auto aMinute = [&](double seconds) { return seconds * 1e3 / minutes; };
    const double oursTime = aMinute(ours.processorSeconds() - oursBefore);
    printRow({"desktop, 5 coins: processor time a minute", oursTime, aMinute(peer.processorSeconds() - peerBefore), 1.5,
              "ms", "window, 10 Hz timer"});
    printRow({"desktop, 5 coins: processor time a minute", oursTime, 0, 150, "ms", ""});
    printRow({"desktop, 5 coins: processor time a minute", oursTime,
              aMinute(polybar.processorSeconds() - polybarBefore), std::nullopt, "ms", "polybar, 1 Hz"});
}

}  // namespace

void benchDesktop(const std::string& programs, int minutes) {
    benchDesktopStart(programs);
    benchMemory(programs, "", "plain desktop");
    benchMemory(programs, "GNOME", "GNOME");
    if (minutes > 0) {
        benchMinute(programs, minutes);
    }
}

}  // namespace glintar::bench
