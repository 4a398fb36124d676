#include "benchmarks/Process.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace glintar::bench {

namespace {

using Words = std::vector<std::string>;

[[noreturn]] void fail(const std::string& what) {
    fmt::print(stderr, "bench: {}\n", what);
    std::exit(1);
}

void leaveOut(Words& environment, const std::string& name) {
    std::erase_if(environment, [&](const std::string& entry) { return entry.starts_with(name + "="); });
}

/// The environment for the command, from which the part that says so is taken away.
Words takeEnvironment(Words& command) {
    Words environment;
    for (char** entry = environ; *entry; ++entry) {
        environment.emplace_back(*entry);
    }
    if (command.front() != "env") {
        return environment;
    }
    auto word = command.begin() + 1;
    for (; word != command.end(); ++word) {
        if (*word == "-u") {
            leaveOut(environment, *++word);
        } else if (const auto equals = word->find('='); equals != std::string::npos) {
            leaveOut(environment, word->substr(0, equals));
            environment.push_back(*word);
        } else {
            break;
        }
    }
    command.erase(command.begin(), word);
    return environment;
}

std::vector<char*> pointersTo(Words& words) {
    std::vector<char*> pointers;
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

Process::Process(const std::vector<std::string>& command, Piped piped) {
    Words words = command;
    Words environment = takeEnvironment(words);
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        fail("no pipe");
    }
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    const auto [kept, dropped] =
        piped == Piped::Output ? std::pair(STDOUT_FILENO, STDERR_FILENO) : std::pair(STDERR_FILENO, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&files, ends[1], kept);
    ::posix_spawn_file_actions_addopen(&files, dropped, "/dev/null", O_WRONLY, 0);
    // Comes back when the program has been entered.
    const int error = ::posix_spawnp(&child_, words.front().c_str(), &files, nullptr, pointersTo(words).data(),
                                     pointersTo(environment).data());
    entered_ = std::chrono::steady_clock::now();
    ::posix_spawn_file_actions_destroy(&files);
    ::close(ends[1]);
    if (error != 0) {
        fail(words.front() + " cannot be run");
    }
    clockAtEntry_ = processorClock();
    output_ = ::fdopen(ends[0], "r");
}

Process::~Process() {
    ::kill(child_, SIGTERM);
    ::waitpid(child_, nullptr, 0);
    std::fclose(output_);
}

std::string Process::waitForLine() {
    char line[4096];
    return std::fgets(line, sizeof line, output_) ? line : "";
}

void Process::signal(int number) const {
    ::kill(child_, number);
}

double Process::processorClock() const {
    clockid_t clock{};
    timespec time{};
    if (::clock_getcpuclockid(child_, &clock) != 0 || ::clock_gettime(clock, &time) != 0) {
        fail("a program that is measured has ended");
    }
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double Process::processorSeconds() const {
    return processorClock() - clockAtEntry_;
}

double Process::proportionalBytes() const {
    std::ifstream text(fmt::format("/proc/{}/smaps_rollup", child_));
    std::string word;
    while (text >> word && word != "Pss:") {
    }
    double kilobytes = 0;
    text >> kilobytes;
    return kilobytes * 1024;
}

Process::PerThread Process::perThread(const std::string& file, const std::string& field) const {
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

double growth(const Process::PerThread& before, const Process::PerThread& now) {
    double total = 0;
    for (const auto& [thread, value] : now) {
        const auto earlier = before.find(thread);
        total += value - (earlier == before.end() ? 0 : earlier->second);
    }
    return total;
}

}  // namespace glintar::bench
