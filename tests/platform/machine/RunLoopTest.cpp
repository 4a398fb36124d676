// The real run loop and the virtual one keep the same promises.

#include "platform/DispatchGroup.h"
#include "platform/NotificationCenter.h"
#include "platform/posix/ThreadWorkQueue.h"
#include "platform/qtcore/QtRunLoop.h"
#include "platform/virtual/VirtualRunLoop.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <latch>
#include <thread>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

struct RealLoop {
    QtRunLoop loop;
    void pass(Duration duration) {
        const auto end = loop.now() + duration;
        while (loop.now() < end) {
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 1);
        }
    }
};

struct VirtualLoop {
    VirtualRunLoop loop;
    void pass(Duration duration) { loop.advance(duration); }
};

template <class Machine>
class RunLoopTest : public testing::Test {
protected:
    Machine machine;
    RunLoop& loop = machine.loop;
    std::vector<std::string> ran;
    Task note(std::string what) {
        return [this, what = std::move(what)] { ran.push_back(what); };
    }
};

using Machines = testing::Types<RealLoop, VirtualLoop>;
TYPED_TEST_SUITE(RunLoopTest, Machines);

TYPED_TEST(RunLoopTest, RunsInOrderOfTimeAndThenOfArrival) {
    auto later = this->loop.after(20ms, this->note("later"));
    auto sooner = this->loop.after(5ms, this->note("sooner"));
    this->loop.postAfter(10ms, this->note("between"));
    this->loop.post(this->note("first"));
    this->loop.post(this->note("second"));
    EXPECT_THAT(this->ran, ElementsAre()) << "nothing runs before the caller is done";
    this->machine.pass(60ms);
    EXPECT_THAT(this->ran, ElementsAre("first", "second", "sooner", "between", "later"));
}

TYPED_TEST(RunLoopTest, ADroppedHandleCancelsEvenInItsOwnCallback) {
    auto dropped = this->loop.after(5ms, this->note("dropped"));
    dropped.reset();
    TimerHandle ticking;
    int ticks = 0;
    ticking = this->loop.every(4ms, [&] {
        if (++ticks == 3) {
            ticking.reset();
        }
    });
    TimerHandle itself;
    itself = this->loop.after(2ms, [&] {
        itself.reset();
        this->ran.push_back("itself");
    });
    this->machine.pass(60ms);
    EXPECT_EQ(ticks, 3);
    EXPECT_THAT(this->ran, ElementsAre("itself"));
}

TYPED_TEST(RunLoopTest, WorkMayAddWork) {
    TimerHandle second;
    this->loop.post([&] {
        second = this->loop.after(1ms, this->note("timer"));
        this->loop.post(this->note("post"));
    });
    this->machine.pass(30ms);
    EXPECT_THAT(this->ran, ElementsAre("post", "timer"));
}

class QtRunLoopTest : public RunLoopTest<RealLoop> {};

TEST_F(QtRunLoopTest, TicksThatWereMissedAreNotMadeUpFor) {
    const auto ticking = loop.every(20ms, [this] { ran.emplace_back("tick"); });
    std::this_thread::sleep_for(90ms);
    QCoreApplication::processEvents();
    EXPECT_THAT(ran, ElementsAre("tick"));
}

TEST_F(QtRunLoopTest, GoesOnInALoopInsideATaskAndBesideATimerOfNoInterval) {
    QEventLoop dialog;
    const auto busy = loop.every(0ms, [] {});
    TimerHandle timer;
    loop.post([&] {
        dialog.exec();
        ran.emplace_back("closed");
    });
    loop.post([&] {
        loop.post(note("posted"));
        timer = loop.after(1ms, note("timer"));
        loop.postAfter(5ms, [&] { dialog.quit(); });
    });
    QTimer::singleShot(1s, &dialog, &QEventLoop::quit);
    machine.pass(30ms);
    EXPECT_THAT(ran, ElementsAre("posted", "timer", "closed"));
}

TEST_F(QtRunLoopTest, TakesWorkFromOtherThreads) {
    std::vector<std::thread::id> where;
    std::thread other([&] {
        loop.post([&] { where.push_back(std::this_thread::get_id()); });
        loop.postAfter(1ms, [&] { where.push_back(std::this_thread::get_id()); });
    });
    other.join();
    machine.pass(30ms);
    EXPECT_THAT(where, ElementsAre(std::this_thread::get_id(), std::this_thread::get_id()));
}

TEST(NotificationCenterTest, ObserversMayComeAndGoWhileTheyAreCalled) {
    NotificationCenter center;
    std::vector<std::string> called;
    std::unique_ptr<NotificationCenter::Observation> second, third;
    const auto first = center.observe("a", [&] {
        called.emplace_back("first");
        second.reset();
        if (!third) {
            third = center.observe("a", [&] { called.emplace_back("third"); });
        }
    });
    second = center.observe("a", [&] { called.emplace_back("second"); });
    center.post("b");
    center.post("a");
    EXPECT_THAT(called, ElementsAre("first")) << "one dropped meanwhile is not called, nor is one that is new";
    called.clear();
    center.post("a");
    EXPECT_THAT(called, ElementsAre("first", "third"));
}

TEST(DispatchGroupTest, NotifiesOnceWhenAllHaveLeftAndAtOnceWhenNobodyIsIn) {
    VirtualRunLoop loop;
    DispatchGroup group;
    int notified = 0;
    group.notify(loop, [&] { ++notified; });
    EXPECT_EQ(notified, 0) << "on the loop, not at the call";
    loop.settle();
    EXPECT_EQ(notified, 1);

    group.enter();
    DispatchGroup copy = group;
    copy.enter();
    group.notify(loop, [&] { ++notified; });
    group.leave();
    loop.settle();
    EXPECT_EQ(notified, 1);
    copy.leave();
    loop.settle();
    EXPECT_EQ(notified, 2);
}

TEST(ThreadWorkQueueTest, RunsAtOnceOnAsManyThreadsAsItMay) {
    VirtualRunLoop loop;
    ThreadWorkQueue queue(loop, 2);
    std::promise<void> first;
    queue.async([&] { first.set_value(); });
    first.get_future().wait();
    std::this_thread::sleep_for(10ms);  // now that thread is free
    // Each waits for the other: with that one alone this would never end.
    std::latch both(2);
    std::promise<void> done;
    queue.async([&] { both.arrive_and_wait(); });
    queue.async([&] {
        both.arrive_and_wait();
        done.set_value();
    });
    EXPECT_EQ(done.get_future().wait_for(10s), std::future_status::ready);
}

TEST(ThreadWorkQueueTest, RunsEverythingInOrderOnOneThread) {
    VirtualRunLoop loop;
    std::vector<int> ran;
    std::promise<void> done;
    ThreadWorkQueue queue(loop, 1);
    for (int i = 0; i < 100; ++i) {
        queue.async([&ran, i] { ran.push_back(i); });
    }
    queue.asyncAfter(1s, [&] { done.set_value(); });
    loop.advance(999ms);
    std::promise<void> reached;
    queue.async([&] { reached.set_value(); });
    reached.get_future().wait();
    auto future = done.get_future();
    EXPECT_EQ(future.wait_for(0s), std::future_status::timeout) << "not before its time";
    EXPECT_EQ(ran.size(), 100U);
    loop.advance(1ms);
    EXPECT_EQ(future.wait_for(10s), std::future_status::ready);
    EXPECT_TRUE(std::ranges::is_sorted(ran));
}

TEST(ThreadWorkQueueTest, EndsWithWorkWaitingAndUnderWay) {
    VirtualRunLoop loop;
    auto held = std::make_shared<int>(1);
    std::promise<void> started;
    {
        ThreadWorkQueue queue(loop, 1);
        queue.async([&started, held] { started.set_value(); });
        started.get_future().wait();
        queue.async([held] {});
    }
    EXPECT_EQ(held.use_count(), 1) << "what was dropped let go of what it held";
}

}  // namespace
}  // namespace glintar::platform
