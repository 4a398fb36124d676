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

/// `pipe` is what the program finds as descriptor 3, `output` as its standard output; -1 is neither. No fork: a copy of
/// a program with sanitizers takes tens of milliseconds.
pid_t spawn(const std::vector<std::string>& command, int output, int pipe) {
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (const auto& word : command) {
        words.push_back(const_cast<char*>(word.c_str()));
    }
    words.push_back(nullptr);
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    for (const auto& [from, to] : {std::pair(output, STDOUT_FILENO), std::pair(pipe, 3)}) {
        if (from >= 0) {
            ::posix_spawn_file_actions_adddup2(&files, from, to);
        }
    }
    pid_t child = -1;
    const int error = ::posix_spawnp(&child, words[0], &files, nullptr, words.data(), environ);
    ::posix_spawn_file_actions_destroy(&files);
    if (error != 0) {
        throw std::runtime_error(command.front() + " cannot be run");
    }
    return child;
}

/// It must not outlive a test that crashes.
std::vector<std::string> dyingWithTheTest(std::vector<std::string> command) {
    static const std::array<std::string, 4> first{"setpriv", "--pdeathsig", "KILL", "--"};
    command.insert(command.begin(), first.begin(), first.end());
    return command;
}

struct Pipe {
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
    }
    ~Pipe() {
        closeWriting();
        ::close(ends[0]);
    }
    void closeWriting() {
        if (ends[1] >= 0) {
            ::close(std::exchange(ends[1], -1));
        }
    }
    /// To the end, or to the end of the line.
    std::string read(bool isOneLine) {
        closeWriting();
        std::string text;
        char byte = 0;
        while (::read(ends[0], &byte, 1) == 1 && !(isOneLine && byte == '\n')) {
            text += byte;
        }
        return text;
    }
    std::array<int, 2> ends{-1, -1};
};

}  // namespace

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
    Pipe pipe;
    const pid_t child = spawn(command, pipe.ends[1], -1);
    auto text = pipe.read(false);
    ::waitpid(child, nullptr, 0);
    return text;
}

std::pair<Child, std::string> startTelling(const std::vector<std::string>& command) {
    Pipe pipe;
    Child child(command, pipe.ends[1]);
    auto word = pipe.read(true);
    if (word.empty()) {
        throw std::runtime_error(command.front() + " does not start");
    }
    return {std::move(child), std::move(word)};
}

Child::Child(const std::vector<std::string>& command, int pipe) : id_(spawn(dyingWithTheTest(command), -1, pipe)) {}

void Child::stop() {
    if (id_ > 0) {
        ::kill(id_, SIGKILL);
        ::waitpid(std::exchange(id_, -1), nullptr, 0);
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
