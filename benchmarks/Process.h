#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace glintar::bench {

/// A command that runs beside the bench, and is terminated with its owner. A command of "env" starts with these
/// settings at once, without that program before it.
class Process {
public:
    enum class Piped { Output, Errors };  ///< the other one is dropped
    explicit Process(const std::vector<std::string>& command, Piped piped = Piped::Output);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    [[nodiscard]] pid_t id() const { return child_; }

    /// The next line of what is piped, or nothing at its end.
    [[nodiscard]] std::string waitForLine();

    void signal(int number) const;

    /// When the program itself was entered.
    [[nodiscard]] std::chrono::steady_clock::time_point entered() const { return entered_; }

    /// Processor time since then, in seconds, of all threads there are and were. What it ran itself is left out.
    [[nodiscard]] double processorSeconds() const;

    /// Proportional share of the memory that is mapped, in bytes.
    [[nodiscard]] double proportionalBytes() const;

    /// A number for each thread.
    using PerThread = std::map<std::string, double>;
    [[nodiscard]] PerThread processorNanoseconds() const { return perThread("schedstat", ""); }
    [[nodiscard]] PerThread wakeUps() const { return perThread("status", "voluntary_ctxt_switches:"); }

private:
    [[nodiscard]] PerThread perThread(const std::string& file, const std::string& field) const;
    [[nodiscard]] double processorClock() const;

    pid_t child_ = -1;
    FILE* output_ = nullptr;
    std::chrono::steady_clock::time_point entered_;
    double clockAtEntry_ = 0;
};

/// What has come since, of the threads that are there now; a thread that ended meanwhile takes its last share with it.
[[nodiscard]] double growth(const Process::PerThread& before, const Process::PerThread& now);

}  // namespace glintar::bench
