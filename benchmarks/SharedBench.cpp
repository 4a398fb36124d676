#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Process.h"
#include "benchmarks/Profile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

namespace glintar::bench {

using namespace std::chrono_literals;

void benchShared(const std::string& programs) {
    constexpr int kMinutes = 10;  // a refresh each
    using Transport = support::LoopbackServer::Transport;
    const Profile alone(Transport::Tls, {.isShared = true});
    const Profile shared(Transport::Tls, {.isShared = true});
    const auto command = [&](const Profile& profile) { return profile.command(programs + "/glintar", {"line"}, true); };
    Process single(command(alone));
    std::array<Process, 3> copies{Process(command(shared)), Process(command(shared)), Process(command(shared))};
    for (auto& copy : copies) {
        std::ignore = copy.waitForLine();
    }
    std::this_thread::sleep_for(5s);
    std::array<Process::PerThread, 3> before;
    std::ranges::transform(copies, before.begin(), &Process::processorNanoseconds);
    std::this_thread::sleep_for(std::chrono::minutes(kMinutes));
    std::array<double, 3> used{};
    for (std::size_t i = 0; i < copies.size(); ++i) {
        used[i] = growth(before[i], copies[i].processorNanoseconds()) / 1e6 / kMinutes;
    }
    std::ranges::sort(used);
    printRow({fmt::format("three copies of line, {} minutes: requests", kMinutes),
              static_cast<double>(shared.refreshes()), static_cast<double>(alone.refreshes()), 1.0, "", "one copy"});
    printRow({"three copies of line: processor time a minute of one that follows", used[1], used[2], 0.6, "ms",
              "the one that asks"});
}

}  // namespace glintar::bench
