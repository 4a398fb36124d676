#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"
#include "platform/posix/WakeWatch.h"
#include "platform/qtcore/QtMachineEvents.h"
#include "platform/qtcore/QtRunLoop.h"
#include "platform/virtual/VirtualRunLoop.h"

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;

TEST(WakeWatchTest, TellsSleepFromAClockThatWasSet) {
    VirtualRunLoop loop;
    loop.sleep(3h);  // before we were started
    NotificationCenter notifications;
    const int clockChanges = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    WakeWatch watch(loop, notifications, Descriptor(clockChanges));
    int notices = 0;
    const auto observation = notifications.observe(kMachineResumed, [&] { ++notices; });
    const auto clockChanged = [&](Duration asleep, Duration awake) {
        loop.advance(awake);
        loop.sleep(asleep);
        ASSERT_EQ(::eventfd_write(clockChanges, 1), 0);
        watch.onReadable();
        pollfd ready{clockChanges, POLLIN, 0};
        EXPECT_EQ(::poll(&ready, 1, 0), 0) << "read, or the loop would never sleep again";
    };
    clockChanged(0s, 10min);
    EXPECT_EQ(notices, 0) << "the clock was set";
    clockChanged(900ms, 1s);
    EXPECT_EQ(notices, 0) << "too short to matter";
    clockChanged(900ms, 1s);
    EXPECT_EQ(notices, 0) << "nor do such sleeps add up";
    clockChanged(10min, 1s);
    EXPECT_EQ(notices, 1);
    clockChanged(0s, 1s);
    EXPECT_EQ(notices, 1);
    clockChanged(2s, 1s);
    EXPECT_EQ(notices, 2);
}

TEST(QtMachineEventsTest, IsSilentWhileNothingHappens) {
    QtRunLoop loop;
    NotificationCenter notifications;
    int notices = 0;
    const auto resumed = notifications.observe(kMachineResumed, [&] { ++notices; });
    const auto back = notifications.observe(kNetworkCameBack, [&] { ++notices; });
    const QtMachineEvents events(loop, notifications);
    int rounds = 0;
    bool isOver = false;
    const auto end = loop.after(300ms, [&] { isOver = true; });
    while (!isOver) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        ++rounds;
    }
    EXPECT_EQ(notices, 0);
    EXPECT_LT(rounds, 20) << "a descriptor stays readable";
}

}  // namespace
}  // namespace glintar::platform
