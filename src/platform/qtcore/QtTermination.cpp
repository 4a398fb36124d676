#include "platform/qtcore/QtTermination.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>

namespace glintar::platform {

namespace {

std::atomic<int> wakeFd = -1;

void onSignal(int) {
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(wakeFd, &one, sizeof one);
    errno = error;
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action{};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

}  // namespace

QtTermination::QtTermination(std::function<void()> onTerminate) : onTerminate_(std::move(onTerminate)) {
    wakeFd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    notifier_ = std::make_unique<QSocketNotifier>(wakeFd, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        // Not read: it says to the end that there is no time to wait for anybody.
        notifier_->setEnabled(false);
        onTerminate_();
    });
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before{};
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {  // whoever started us may want it ignored, as shells do in the background
            handle(signal, onSignal);
        }
    }
    handle(SIGPIPE, SIG_IGN);
}

QtTermination::~QtTermination() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction now{};
        ::sigaction(signal, nullptr, &now);
        if (now.sa_handler == onSignal) {
            handle(signal, SIG_DFL);
        }
    }
    notifier_.reset();
    ::close(wakeFd.exchange(-1));
}

void QtTermination::announceEnd() {
    notifier_->setEnabled(false);
    onSignal(0);
}

int QtTermination::descriptor() const {
    return wakeFd;
}

}  // namespace glintar::platform
