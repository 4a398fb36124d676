#include "support/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <utility>

namespace glintar::test {

namespace {

using namespace std::chrono_literals;
constexpr auto kDeadline = 15s;

void closeIfOpen(int& fd) {
    if (fd >= 0) {
        ::close(std::exchange(fd, -1));
    }
}

void fill(int pipe) {
    const std::string block(4096, '-');
    ::fcntl(pipe, F_SETFL, O_NONBLOCK);
    while (::write(pipe, block.data(), block.size()) > 0) {
    }
    ::fcntl(pipe, F_SETFL, 0);
}

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
    const auto end = std::chrono::steady_clock::now() + kDeadline;
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
        ::kill(id_, SIGCONT);  // one that stands still would not hear it
        if (eventually([this] { return ::waitpid(id_, nullptr, WNOHANG) != 0; })) {
            id_ = -1;
        }
        stop();
    }
}

Program::Program(const std::vector<std::string>& command, const Environment& environment, Output output) {
    std::vector<std::string> words{"env"};
    for (const auto& [name, value] : environment) {  // options go first
        words.insert(value ? words.end() : words.begin() + 1, value ? name + "=" + *value : "--unset=" + name);
    }
    words.insert(words.end(), command.begin(), command.end());
    std::array<int, 2> errors{}, lines{};
    std::array<char, 64> terminal{};
    const winsize size{.ws_row = 24, .ws_col = 240, .ws_xpixel = 0, .ws_ypixel = 0};
    const bool hasTerminal = output == Output::Terminal;
    if (::pipe2(errors.data(), O_CLOEXEC) != 0 ||
        (hasTerminal ? ::openpty(&lines[0], &lines[1], terminal.data(), nullptr, &size)
                     : ::pipe2(lines.data(), O_CLOEXEC)) != 0) {
        return;
    }
    ::fcntl(lines[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(lines[1], F_SETFD, FD_CLOEXEC);
    if (output == Output::FullPipe || output == Output::FullErrors) {
        fill(output == Output::FullPipe ? lines[1] : errors[1]);
    }
    std::vector<std::pair<int, int>> files{{errors[1], STDERR_FILENO}};
    if (!hasTerminal) {
        files.emplace_back(lines[1], STDOUT_FILENO);
    }
    child_ = spawn(words, files, hasTerminal ? terminal.data() : nullptr);
    ::close(lines[1]);
    ::close(errors[1]);
    outputFd_ = lines[0];
    errorFd_ = errors[0];
}

Program::~Program() {
    if (!status_ && child_ > 0) {
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }
    closeIfOpen(outputFd_);
    closeIfOpen(errorFd_);
}

bool Program::waitFor(const std::string& where, const std::string& text) {
    const auto end = std::chrono::steady_clock::now() + kDeadline;
    while (!where.contains(text)) {
        if (std::chrono::steady_clock::now() > end || !readSome(100ms)) {
            return where.contains(text);
        }
    }
    return true;
}

bool Program::isRunning() {
    int status = 0;
    if (!status_ && ::waitpid(child_, &status, WNOHANG) == child_) {
        status_ = status;
    }
    return !status_;
}

std::optional<int> Program::exitStatus() const {
    return status_ && WIFEXITED(*status_) ? std::optional(WEXITSTATUS(*status_)) : std::nullopt;
}

std::optional<int> Program::wait() {
    const auto end = std::chrono::steady_clock::now() + kDeadline;
    while (isRunning() && std::chrono::steady_clock::now() < end) {
        if (!readSome(20ms)) {
            std::this_thread::sleep_for(1ms);  // both pipes are at their end
        }
    }
    while (status_ && readSome(0ms)) {
    }
    return exitStatus();
}

std::optional<int> Program::waitUnread() {
    static_cast<void>(eventually([this] { return !isRunning(); }));
    return exitStatus();
}

void Program::signal(int number) {
    ::kill(child_, number);
}

void Program::type(const std::string& keys) const {
    [[maybe_unused]] const auto written = ::write(outputFd_, keys.data(), keys.size());
}

void Program::stopTerminal() const {
    ::tcflow(outputFd_, TCOOFF);
}

void Program::closeOutput() {
    closeIfOpen(outputFd_);
}

/// Takes what is there; false when both pipes are at their end.
bool Program::readSome(std::chrono::milliseconds wait) {
    std::array<pollfd, 2> sources{pollfd{outputFd_, POLLIN, 0}, pollfd{errorFd_, POLLIN, 0}};
    if (outputFd_ < 0 && errorFd_ < 0) {
        return false;
    }
    if (::poll(sources.data(), sources.size(), static_cast<int>(wait.count())) <= 0) {
        return wait.count() > 0;
    }
    std::array<char, 65536> buffer{};
    for (const auto& source : sources) {
        if (source.fd < 0 || source.revents == 0) {
            continue;
        }
        const ssize_t got = ::read(source.fd, buffer.data(), buffer.size());
        const bool isOutput = source.fd == outputFd_;
        if (got > 0) {
            (isOutput ? output_ : errors_).append(buffer.data(), static_cast<std::size_t>(got));
        } else {
            closeIfOpen(isOutput ? outputFd_ : errorFd_);
        }
    }
    return true;
}

}  // namespace glintar::test
