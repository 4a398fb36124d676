#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Profile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

namespace glintar::bench {

namespace {

using namespace std::chrono_literals;

/// A command that runs with its standard output in a pipe.
class Running {
public:
    explicit Running(const std::vector<std::string>& command) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) {
            std::exit(1);
        }
        child_ = ::fork();
        if (child_ == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
            std::vector<char*> arguments;
            for (const auto& word : command) {
                arguments.push_back(const_cast<char*>(word.c_str()));
            }
            arguments.push_back(nullptr);
            ::execvp(arguments[0], arguments.data());
            ::_exit(127);
        }
        ::close(ends[1]);
        output_ = ::fdopen(ends[0], "r");
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        ::kill(child_, SIGTERM);
        ::waitpid(child_, nullptr, 0);
        std::fclose(output_);
    }

    std::string waitForLine() {
        char line[4096];
        return std::fgets(line, sizeof line, output_) ? line : "";
    }

    /// A number in a file of /proc for each thread; `field` is its name, or empty for the first number of the file.
    using PerThread = std::map<std::string, double>;
    [[nodiscard]] PerThread perThread(const std::string& file, const std::string& field) const {
        PerThread values;
        for (const auto& task : std::filesystem::directory_iterator(fmt::format("/proc/{}/task", child_))) {
            std::ifstream text(task.path() / file);
            std::string word;
            while (!field.empty() && text >> word && word != field) {
            }
            text >> values[task.path().filename()];
        }
        return values;
    }

    [[nodiscard]] PerThread processorNanoseconds() const { return perThread("schedstat", ""); }
    [[nodiscard]] PerThread wakeUps() const { return perThread("status", "voluntary_ctxt_switches:"); }

    [[nodiscard]] double proportionalBytes() const {
        std::ifstream text(fmt::format("/proc/{}/smaps_rollup", child_));
        std::string word;
        while (text >> word && word != "Pss:") {
        }
        double kilobytes = 0;
        text >> kilobytes;
        return kilobytes * 1024;
    }

private:
    pid_t child_ = -1;
    FILE* output_ = nullptr;
};

/// What has come since, of the threads that are there now; a thread that ended meanwhile takes its last share with it.
double growth(const Running::PerThread& before, const Running::PerThread& now) {
    double total = 0;
    for (const auto& [thread, value] : now) {
        const auto earlier = before.find(thread);
        total += value - (earlier == before.end() ? 0 : earlier->second);
    }
    return total;
}

}  // namespace

void benchRunning(const std::string& programs, int minutes) {
    const Profile profile(support::LoopbackServer::Transport::Tls);
    Running peer(profile.command(programs + "/bench/glintar-bench-peer", {profile.url()}, true));
    if (peer.waitForLine() != "ready\n") {
        fmt::print(stderr, "bench: the peer could not make its request or its look-up\n");
        std::exit(1);
    }
    Running line(profile.command(programs + "/glintar", {"line"}, true));
    line.waitForLine();
    std::this_thread::sleep_for(5s);
    double nanoseconds = 0;
    double idleWakeUps = 0;
    for (int minute = 0; minute < minutes; ++minute) {
        const auto start = line.processorNanoseconds();
        const auto before = line.wakeUps();
        std::this_thread::sleep_for(45s);  // of the 55 until the next refresh
        idleWakeUps += growth(before, line.wakeUps());
        line.waitForLine();
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
