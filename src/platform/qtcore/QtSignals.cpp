#include "platform/qtcore/QtSignals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace glintar::platform {

namespace {

sigset_t setOf(std::initializer_list<int> numbers) {
    sigset_t set;
    ::sigemptyset(&set);
    for (const int number : numbers) {
        ::sigaddset(&set, number);
    }
    return set;
}

}  // namespace

void QtSignals::block(std::initializer_list<int> numbers) {
    const auto set = setOf(numbers);
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

QtSignals::QtSignals(std::initializer_list<int> numbers, std::function<void(int signal)> onSignal) {
    block(numbers);
    const auto set = setOf(numbers);
    descriptor_ = Descriptor(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    notifier_.emplace(descriptor_.number(), QSocketNotifier::Read);
    QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_,
                     [fd = descriptor_.number(), onSignal = std::move(onSignal)] {
                         signalfd_siginfo info{};
                         while (::read(fd, &info, sizeof info) == sizeof info) {
                             onSignal(static_cast<int>(info.ssi_signo));
                         }
                     });
}

}  // namespace glintar::platform
