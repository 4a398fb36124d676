#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"
#include "platform/posix/NetworkWatch.h"
#include "platform/virtual/VirtualRunLoop.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;

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
