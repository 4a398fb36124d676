#include "platform/terminal/SecretInput.h"

#include "platform/posix/Descriptor.h"

#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace glintar::platform {

namespace {

constexpr std::array<int, 4> kEnds{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr std::size_t kMaxLength = std::size_t{64} * 1024;

/// While it lives, the terminal is silent and a signal that ends the program only interrupts reading: otherwise the
/// user's shell would be left silent.
class SilentTerminal {
public:
    SilentTerminal() {
        struct sigaction interrupt{};
        interrupt.sa_handler = [](int) {};
        for (std::size_t i = 0; i < kEnds.size(); ++i) {
            ::sigaction(kEnds[i], &interrupt, &before_[i]);
        }
        termios silent = shown_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;
    ~SilentTerminal() {
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown_);
        for (std::size_t i = 0; i < kEnds.size(); ++i) {
            ::sigaction(kEnds[i], &before_[i], nullptr);
        }
        complain("\n");
    }

private:
    termios shown_ = [] {
        termios now{};
        ::tcgetattr(STDIN_FILENO, &now);
        return now;
    }();
    std::array<struct sigaction, kEnds.size()> before_{};
};

}  // namespace

std::optional<std::string> readSecretLine(const std::string& prompt) {
    std::optional<SilentTerminal> silent;
    if (::isatty(STDIN_FILENO) != 0) {
        complain(prompt);
        silent.emplace();
    }
    std::string line;
    for (char c = 0; line.size() < kMaxLength;) {
        const auto got = ::read(STDIN_FILENO, &c, 1);
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0 || c == '\n') {
            break;
        }
        line += c;
    }
    return line;
}

}  // namespace glintar::platform
