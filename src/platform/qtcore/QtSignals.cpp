#include "platform/qtcore/QtSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace glintar::platform {

namespace {

// Both ends of a pipe that lives as long as the process: a handler may run at any moment.
std::array<int, 2> noted{-1, -1};

void note(int number) {
    const int error = errno;
    const auto byte = static_cast<char>(number);
    if (::write(noted[1], &byte, 1) < 0) {
        // Full: enough of them wait already.
    }
    errno = error;
}

void mask(int how, std::initializer_list<int> numbers) {
    sigset_t set;
    ::sigemptyset(&set);
    for (const int number : numbers) {
        ::sigaddset(&set, number);
    }
    ::pthread_sigmask(how, &set, nullptr);
}

}  // namespace

void QtSignals::take(std::initializer_list<int> numbers) {
    if (noted[0] < 0 && ::pipe2(noted.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    struct sigaction action{};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    for (const int number : numbers) {
        ::sigaction(number, &action, nullptr);
    }
    mask(SIG_UNBLOCK, numbers);
}

void QtSignals::hold(std::initializer_list<int> numbers) {
    mask(SIG_BLOCK, numbers);
}

QtSignals::QtSignals(std::function<void(int signal)> onSignal) : notifier_(noted[0], QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [onSignal = std::move(onSignal)] {
        for (char number = 0; ::read(noted[0], &number, 1) == 1;) {
            onSignal(number);
        }
    });
}

}  // namespace glintar::platform
