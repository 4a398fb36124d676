#include "support/Child.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace glintar::test {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 15s;

/// It must not outlive a test that crashes.
std::vector<std::string> dyingWithTheTest(std::vector<std::string> command) {
    static const std::array<std::string, 4> first{"setpriv", "--pdeathsig", "KILL", "--"};
    command.insert(command.begin(), first.begin(), first.end());
    return command;
}

/// What comes out of a pipe that only a child writes to from now on: all of it, or one line.
std::string told(const std::array<int, 2>& pipe, bool isOneLine) {
    ::close(pipe[1]);
    std::string text;
    for (char byte = 0; ::read(pipe[0], &byte, 1) == 1 && !(isOneLine && byte == '\n');) {
        text += byte;
    }
    ::close(pipe[0]);
    return text;
}

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    return ends;
}

}  // namespace

// No fork: a copy of a program with sanitizers takes tens of milliseconds.
pid_t spawn(const std::vector<std::string>& command, const std::vector<std::pair<int, int>>& files,
            const char* terminal) {
    std::vector<char*> words;
    for (const auto& word : command) {
        words.push_back(const_cast<char*>(word.c_str()));
    }
    words.push_back(nullptr);
    posix_spawnattr_t how;
    ::posix_spawnattr_init(&how);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::posix_spawn_file_actions_addopen(&actions, standard, "/dev/null", O_RDWR, 0);
    }
    if (terminal != nullptr) {  // the first that the leader of a session opens is its own
        ::posix_spawnattr_setflags(&how, POSIX_SPAWN_SETSID);
        ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, terminal, O_RDWR, 0);
    }
    for (const auto& [from, to] : files) {
        ::posix_spawn_file_actions_adddup2(&actions, from, to);
    }
    pid_t child = -1;
    const int error = ::posix_spawnp(&child, words[0], &actions, &how, words.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&how);
    if (error != 0) {
        throw std::runtime_error(command.front() + " cannot be run");
    }
    return child;
}

bool eventually(const std::function<bool()>& condition, const std::function<void()>& meanwhile) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        if (meanwhile) {
            meanwhile();
        } else {
            std::this_thread::sleep_for(10ms);
        }
    }
    return true;
}

std::string outputOf(const std::vector<std::string>& command) {
    const auto pipe = makePipe();
    const pid_t child = spawn(command, {{pipe[1], STDOUT_FILENO}});
    auto text = told(pipe, false);
    ::waitpid(child, nullptr, 0);
    return text;
}

std::pair<Child, std::string> startTelling(const std::vector<std::string>& command) {
    const auto pipe = makePipe();
    Child child(command, pipe[1]);
    auto word = told(pipe, true);
    if (word.empty()) {
        throw std::runtime_error(command.front() + " does not start");
    }
    return {std::move(child), std::move(word)};
}

Child::Child(const std::vector<std::string>& command, int pipe)
    : id_(spawn(dyingWithTheTest(command),
                pipe < 0 ? std::vector<std::pair<int, int>>{} : std::vector{std::pair(pipe, 3)})) {}

void Child::stop() {
    if (id_ > 0) {
        ::kill(id_, SIGKILL);
        ::waitpid(std::exchange(id_, -1), nullptr, 0);
    }
}

void Child::signal(int number) const {
    if (id_ > 0) {
        ::kill(id_, number);
    }
}

void Child::terminate() {
    if (id_ > 0) {
        ::kill(id_, SIGTERM);
        if (eventually([this] { return ::waitpid(id_, nullptr, WNOHANG) != 0; })) {
            id_ = -1;
        }
        stop();
    }
}

}  // namespace glintar::test
