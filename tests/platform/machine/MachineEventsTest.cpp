#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"
#include "platform/posix/NetworkWatch.h"
#include "platform/posix/WakeWatch.h"
#include "platform/qtcore/QtMachineEvents.h"
#include "platform/qtcore/QtRunLoop.h"
#include "platform/virtual/VirtualRunLoop.h"

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

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

/// In a network of this process's own. What was wrong, as its exit status: the number of the row.
int firstWrongRow() {
    struct Row {
        const char* change;
        Duration wait;
        int notices;
    };
    const Row rows[] = {
        {"ip link set lo up", 1s, 0},
        {"ip route add default dev lo metric 7", 900ms, 0},
        {"ip route add default dev lo metric 8", 1s, 1},  // one for all steps
        {"ip route del default metric 7", 60s, 0},
        {"ip route add 10.0.0.0/8 dev lo", 60s, 0},
        {"ip route add default dev lo table 99", 60s, 0},
        {"ip route add blackhole default metric 9", 60s, 0},
        {"ip -6 route add default dev lo", 1s, 1},
        {"ip route add default dev lo", 29s, 0},  // told of a moment ago
        {"ip link set lo up", 1s, 1},
        {"ip route add 128.0.0.0/1 dev lo", 30s, 1},
        // More than the socket holds while nobody reads: a new way may be among what is lost.
        {"seq 1000 | sed 's,.*,route add 10.0.0.0/8 dev lo metric &,' | ip -batch -", 30s, 1},
        {"ip link set lo down", 60s, 0},
    };
    VirtualRunLoop loop;
    NotificationCenter notifications;
    NetworkWatch watch(loop, notifications);
    int notices = 0;
    const auto observation = notifications.observe(kNetworkCameBack, [&] { ++notices; });
    for (int number = 1; const auto& row : rows) {
        const bool isDone = std::system(row.change) == 0;
        pollfd ready{watch.descriptor(), POLLIN, 0};
        const bool isWell = ::poll(&ready, 1, 50) == 0 || watch.onReadable();
        loop.advance(row.wait);
        if (!isDone || !isWell || std::exchange(notices, 0) != row.notices) {
            return number;
        }
        ++number;
    }
    return 0;
}

TEST(NetworkWatchTest, TellsOfEachNewWayToOtherMachinesOnce) {
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isAllowed = ::unshare(CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
        ::_exit(isAllowed ? firstWrongRow() : 77);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the row that was not as expected, or 77 without a network of one's own";
}

}  // namespace
}  // namespace glintar::platform
