// From the entry of the program to its first text on the screen.

#include "benchmarks/Benches.h"
#include "benchmarks/DesktopScene.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Process.h"
#include "benchmarks/Profile.h"
#include "platform/xcb/XcbConnection.h"

#include <fmt/format.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace glintar::bench {

namespace {

using namespace std::chrono_literals;
using Words = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

constexpr int kRounds = 15;

// Small, since all of it is looked at again and again, and with room for one line.
constexpr int kWidth = 320;
constexpr int kHeight = 32;

/// Looks at the screen, some three times a millisecond.
class Watcher {
public:
    Watcher() : connection_(platform::XcbConnection::open()) {
        if (!connection_) {
            fmt::print(stderr, "bench: the screen cannot be reached\n");
            std::exit(1);
        }
    }

    /// Nobody shows anything.
    void waitForNothing() const {
        waitUntil([this] { return colors() == 1; });
    }

    /// Somebody shows a text, whose smooth edges are of many colours.
    void waitForText() const {
        waitUntil([this] { return colors() == kMany; });
    }

private:
    static constexpr std::size_t kMany = 12;

    template <class Condition>
    void waitUntil(const Condition& condition) const {
        const auto end = Clock::now() + 60s;
        while (!condition()) {
            if (Clock::now() > end) {
                fmt::print(stderr, "bench: nothing comes up on the screen, or stays there\n");
                std::exit(1);
            }
            std::this_thread::sleep_for(200us);
        }
    }

    /// How many colours there are on the screen, counted up to `kMany`.
    [[nodiscard]] std::size_t colors() const {
        const auto asked = xcb_get_image(connection_->get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection_->root(), 0, 0,
                                         kWidth, kHeight, ~0U);
        const platform::XcbOwned<xcb_get_image_reply_t> image(xcb_get_image_reply(connection_->get(), asked, nullptr));
        std::array<std::uint32_t, kMany> seen{};
        std::size_t count = 0;
        for (int i = 0; image && i < kWidth * kHeight && count < kMany; ++i) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, xcb_get_image_data(image.get()) + 4 * i, sizeof pixel);
            if (std::find(seen.begin(), seen.begin() + count, pixel) == seen.begin() + count) {
                seen[count++] = pixel;
            }
        }
        return count;
    }

    std::unique_ptr<platform::XcbConnection> connection_;
};

struct Start {
    std::vector<double> wall, processor;  ///< seconds
};

void measure(const Watcher& watcher, const Words& command, Start& start) {
    watcher.waitForNothing();
    const Process process(command);
    watcher.waitForText();
    start.wall.push_back(std::chrono::duration<double>(Clock::now() - process.entered()).count());
    start.processor.push_back(process.processorSeconds());
}

/// As callgrind counts them, up to the text.
double instructions(const Watcher& watcher, Words command, const std::string& program) {
    const Words valgrind{"valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"};
    command.insert(std::ranges::find(command, program), valgrind.begin(), valgrind.end());
    watcher.waitForNothing();
    Process process(command, Process::Piped::Errors);
    watcher.waitForText();
    process.signal(SIGUSR2);  // an end that no program is prepared for
    double count = 0;
    for (auto line = process.waitForLine(); !line.empty(); line = process.waitForLine()) {
        if (const auto at = line.find("Collected : "); at != std::string::npos) {
            std::from_chars(line.data() + at + 12, line.data() + line.size(), count);
        }
    }
    if (count == 0) {
        fmt::print(stderr, "bench: callgrind failed\n");
        std::exit(1);
    }
    return count;
}

}  // namespace

void benchDesktopStart(const std::string& programs) {
    constexpr double kGoal = 1.2;
    const auto program = programs + "/glintar-desktop";
    const auto peer = programs + "/bench/glintar-bench-window";
    for (const auto& [desktop, name] : {std::pair{"", "plain desktop"}, std::pair{"GNOME", "GNOME"}}) {
        const DesktopScene scene(fmt::format("{}x{}x24", kWidth, kHeight));
        const Profile profile(support::LoopbackServer::Transport::Tls, {.coins = 5});
        const Watcher watcher;
        const auto ours = profile.command(program, {}, true, desktop);
        const auto floor = profile.command(peer, {}, true, desktop);
        Start oursStart, floorStart, notCounted;
        measure(watcher, ours, notCounted);
        measure(watcher, floor, notCounted);
        for (int round = 0; round < kRounds; ++round) {
            measure(watcher, ours, oursStart);
            measure(watcher, floor, floorStart);
        }
        printRow({fmt::format("desktop, {}: start to the first text", name), median(oursStart.wall) * 1e3,
                  median(floorStart.wall) * 1e3, kGoal, "ms", "bare window"});
        printRow({fmt::format("desktop, {}: processor time until then", name), median(oursStart.processor) * 1e3,
                  median(floorStart.processor) * 1e3, kGoal, "ms", "bare window"});
        printRow({fmt::format("desktop, {}: instructions until then", name), instructions(watcher, ours, program) / 1e6,
                  instructions(watcher, floor, peer) / 1e6, kGoal, "Minstr", "bare window"});
    }
}

}  // namespace glintar::bench
