#include "platform/posix/Termination.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>

namespace glintar::platform {

namespace {

constexpr std::array kEndings{SIGINT, SIGTERM, SIGHUP};
constexpr suseconds_t kTimeToEnd = 900'000;  // µs

std::atomic<int> wakeFd = -1;
std::atomic<int> endStatus = 0;
std::atomic_flag isEnding;

void startCountdown(suseconds_t time) {
    const itimerval once{.it_interval = {}, .it_value = {.tv_sec = 0, .tv_usec = time}};
    ::setitimer(ITIMER_REAL, &once, nullptr);
}

void onSignal(int) {
    const int error = errno;
    if (!isEnding.test_and_set()) {  // impatient users do not prolong it
        startCountdown(kTimeToEnd);
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(wakeFd, &one, sizeof one);
    }
    errno = error;
}

void handle(int signal, void (*handler)(int), int flags = SA_RESTART) {
    struct sigaction action{};
    action.sa_handler = handler;
    action.sa_flags = flags;
    ::sigaction(signal, &action, nullptr);
}

void mask(int how) {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : kEndings) {
        ::sigaddset(&signals, signal);
    }
    ::pthread_sigmask(how, &signals, nullptr);
}

}  // namespace

Termination::Termination() {
    wakeFd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    handle(SIGALRM, [](int) { ::_exit(endStatus); });
    for (const int signal : kEndings) {
        struct sigaction before{};
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {  // whoever started us may want it ignored, as shells do in the background
            handle(signal, onSignal);
        }
    }
    handle(SIGPIPE, SIG_IGN);
    // A loop that was stopped in its sleep would sleep on for what was left then. Interrupted, it looks at the clock.
    handle(SIGCONT, [](int) {}, 0);
    unblock();
}

Termination::~Termination() {
    startCountdown(0);
    for (const int signal : kEndings) {
        struct sigaction now{};
        ::sigaction(signal, nullptr, &now);
        if (now.sa_handler == onSignal) {
            handle(signal, SIG_DFL);
        }
    }
    ::close(wakeFd.exchange(-1));
}

bool Termination::block() {
    mask(SIG_BLOCK);
    pollfd come{.fd = wakeFd, .events = POLLIN, .revents = 0};
    return ::poll(&come, 1, 0) == 0;
}

void Termination::unblock() {
    mask(SIG_UNBLOCK);
}

void Termination::handOver() {
    mask(SIG_BLOCK);
    startCountdown(0);
}

void Termination::setStatus(int status) {
    endStatus = status;
}

void Termination::announceEnd(int status) {
    endStatus = status;
    onSignal(0);
}

int Termination::descriptor() {
    return wakeFd;
}

}  // namespace glintar::platform
