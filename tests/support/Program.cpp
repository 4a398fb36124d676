#include "support/Program.h"

#include "support/Child.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
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

}  // namespace

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
