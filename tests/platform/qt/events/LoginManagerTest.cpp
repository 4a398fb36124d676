#include "TestBus.h"
#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"
#include "platform/qt/events/LoginManager.h"
#include "platform/virtual/VirtualRunLoop.h"

#include <gtest/gtest.h>

#include <optional>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;
using test::eventually;

class LoginManagerTest : public testing::Test {
protected:
    void startManager() {
        manager.emplace(bus, QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
                        QStringLiteral("org.freedesktop.login1.Manager"));
        manager->take();
    }
    void sleepBegins() { manager->tell(QStringLiteral("PrepareForSleep"), {true}); }
    void sleepEnds() { manager->tell(QStringLiteral("PrepareForSleep"), {false}); }

    /// Nobody tells when it has found its bus, so the machine sleeps until it is noticed.
    [[nodiscard]] bool isHeard() {
        notices = 0;
        return eventually([this] { return notices > 0; },
                          [this] {
                              sleepEnds();
                              loop.advance(100ms);
                              pump();
                          });
    }

    VirtualRunLoop loop;
    NotificationCenter notifications;
    TestBus bus;
    std::optional<Peer> manager;
    int notices = 0;
    std::unique_ptr<NotificationCenter::Observation> observation =
        notifications.observe(kMachineResumed, [this] { ++notices; });
};

TEST_F(LoginManagerTest, TellsOfWakingThroughRestartsOfTheManagerAndTheBus) {
    const LoginManager login(loop, notifications, bus.address());
    startManager();
    ASSERT_TRUE(isHeard());
    EXPECT_EQ(loop.pending(), 0U) << "nothing is polled";

    notices = 0;
    sleepBegins();
    sleepEnds();
    EXPECT_TRUE(eventually([&] { return notices > 0; }, pump));
    manager.reset();
    startManager();
    EXPECT_TRUE(isHeard()) << "the manager was started again";

    manager.reset();
    bus.stop();
    EXPECT_TRUE(eventually([&] { return loop.pending() > 0; }, pump));
    loop.advance(20s);
    bus.start();
    startManager();
    EXPECT_TRUE(eventually([&] { return isHeard(); }, [&] { loop.advance(1min); }));
}

TEST_F(LoginManagerTest, ABusThatHangsHoldsUpNothing) {
    bus.freeze();
    const auto started = std::chrono::steady_clock::now();
    const LoginManager login(loop, notifications, bus.address());
    loop.advance(1min);
    for (int i = 0; i < 20; ++i) {
        pump();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - started, 5s);
    bus.thaw();
    startManager();
    EXPECT_TRUE(isHeard());
}

}  // namespace
}  // namespace glintar::platform
