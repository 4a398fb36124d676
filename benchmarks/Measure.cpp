#include "benchmarks/Measure.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

namespace glintar::bench {

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// What `new` has handed out and not got back, and the most of it so far. The kernel's own peak is off by some hundred
// kilobytes, since it counts pages in batches.
std::atomic<std::int64_t> allocated = 0;
std::atomic<std::int64_t> mostAllocated = 0;

}  // namespace

void printHeader() {
    fmt::print("{:<74}{:>14}{:>14}{:>8}{:>8}\n", "what", "ours", "floor", "ratio", "goal");
}

void printRow(const Row& row) {
    const bool hasFloor = row.floor > 0;
    const double judged = hasFloor ? row.ours / row.floor : row.ours;
    const auto number = [&](double value) { return fmt::format("{:.4g} {}", value, row.unit); };
    fmt::print("{:<74}{:>14}{:>14}{:>8}{:>8}  {}\n", row.name + (hasFloor ? " / " + row.floorName : ""),
               number(row.ours), hasFloor ? number(row.floor) : "", hasFloor ? fmt::format("{:.2f}", judged) : "",
               row.goal ? fmt::format("{:.4g}", *row.goal) : "",
               !row.goal             ? ""
               : judged <= *row.goal ? "met"
                                     : "missed");
    std::fflush(stdout);
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

double processorSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

Pair compare(int rounds, const std::function<void()>& ours, const std::function<void()>& floor) {
    std::vector<double> oursSeconds, floorSeconds;
    const auto once = [](const std::function<void()>& work, std::vector<double>& to) {
        const double start = processorSeconds();
        work();
        to.push_back(processorSeconds() - start);
    };
    ours();
    floor();
    for (int round = 0; round < rounds; ++round) {
        once(ours, oursSeconds);
        once(floor, floorSeconds);
    }
    return {median(oursSeconds), median(floorSeconds)};
}

double commandSeconds(const std::vector<std::string>& command) {
    const pid_t child = ::fork();
    if (child == 0) {
        const int nothing = ::open("/dev/null", O_WRONLY);
        ::dup2(nothing, STDOUT_FILENO);
        ::dup2(nothing, STDERR_FILENO);
        std::vector<char*> arguments;
        for (const auto& word : command) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? seconds(usage.ru_utime) + seconds(usage.ru_stime) : -1;
}

std::vector<double> compareCommands(int rounds, const std::vector<std::vector<std::string>>& commands) {
    std::vector<std::vector<double>> times(commands.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < commands.size(); ++i) {
            const double time = commandSeconds(commands[i]);
            if (time < 0) {
                fmt::print(stderr, "bench: failed: {}\n", fmt::join(commands[i], " "));
                std::exit(1);
            }
            times[i].push_back(time);
        }
    }
    std::vector<double> medians;
    for (auto& time : times) {
        medians.push_back(median(std::move(time)));
    }
    return medians;
}

double instructionsOf(const std::string& setting, std::vector<std::string> command) {
    std::string line = setting + " valgrind --tool=callgrind --callgrind-out-file=/dev/null";
    for (const auto& word : command) {
        line += " '" + word + "'";
    }
    FILE* const output = ::popen((line + " 2>&1 >/dev/null").c_str(), "r");
    double instructions = 0;
    char text[1024];
    while (output && std::fgets(text, sizeof text, output)) {
        const std::string_view read(text);
        if (const auto at = read.find("Collected : "); at != std::string_view::npos) {
            instructions = std::strtod(text + at + 12, nullptr);
        }
    }
    if (!output || ::pclose(output) != 0 || instructions == 0) {
        fmt::print(stderr, "bench: callgrind failed: {}\n", line);
        std::exit(1);
    }
    return instructions;
}

Memory memoryOf(const std::function<std::shared_ptr<void>()>& work) {
    const auto before = allocated.load();
    mostAllocated = before;
    const auto kept = work();
    return {.kept = static_cast<double>(allocated - before), .peak = static_cast<double>(mostAllocated - before)};
}

}  // namespace glintar::bench

void* operator new(std::size_t size) {
    void* const block = std::malloc(size);
    if (!block) {
        std::abort();
    }
    const auto now = glintar::bench::allocated += static_cast<std::int64_t>(::malloc_usable_size(block));
    auto most = glintar::bench::mostAllocated.load();
    while (now > most && !glintar::bench::mostAllocated.compare_exchange_weak(most, now)) {
    }
    return block;
}

void operator delete(void* block) noexcept {
    glintar::bench::allocated -= static_cast<std::int64_t>(::malloc_usable_size(block));
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
