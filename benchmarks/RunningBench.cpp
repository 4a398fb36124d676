#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Process.h"
#include "benchmarks/Profile.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace glintar::bench {

using namespace std::chrono_literals;

void benchRunning(const std::string& programs, int minutes) {
    const Profile profile(support::LoopbackServer::Transport::Tls);
    Process peer(profile.command(programs + "/bench/glintar-bench-peer", {profile.url()}, true));
    if (peer.waitForLine() != "ready\n") {
        fmt::print(stderr, "bench: the peer could not make its request or its look-up\n");
        std::exit(1);
    }
    Process line(profile.command(programs + "/glintar", {"line"}, true));
    std::ignore = line.waitForLine();
    std::this_thread::sleep_for(5s);
    double nanoseconds = 0;
    double idleWakeUps = 0;
    for (int minute = 0; minute < minutes; ++minute) {
        const auto start = line.processorNanoseconds();
        const auto before = line.wakeUps();
        std::this_thread::sleep_for(45s);  // of the 55 until the next refresh
        idleWakeUps += growth(before, line.wakeUps());
        std::ignore = line.waitForLine();
        std::this_thread::sleep_for(5s);
        nanoseconds += growth(start, line.processorNanoseconds());
    }
    printRow({fmt::format("line into a pipe, {} minutes: processor time a minute", minutes),
              nanoseconds / 1e6 / minutes, 0, 12, "ms", ""});
    printRow({"line into a pipe: wake-ups between refreshes", idleWakeUps, 0, 0, "", ""});
    printRow({"line into a pipe: proportional memory", line.proportionalBytes() / 1e6, peer.proportionalBytes() / 1e6,
              1.25, "MB", "peer"});
}

}  // namespace glintar::bench
