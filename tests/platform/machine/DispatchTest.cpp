#include "platform/DispatchGroup.h"
#include "platform/posix/ThreadWorkQueue.h"
#include "platform/virtual/VirtualRunLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <latch>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;

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
