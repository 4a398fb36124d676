#include "presenter/RefreshDecisions.h"

#include <gtest/gtest.h>

namespace glintar::presenter {
namespace {

using namespace std::chrono_literals;
using Next = AfterFetch::Next;

const platform::BootInstant kDue{100s};

struct WakeUpCase {
    const char* what;
    CycleState state;
    WakeUp afterSleepBefore, afterSleepPast, afterNetwork;
};

TEST(RefreshDecisionsTest, WhatFollowsAWakeUp) {
    static constexpr WakeUp kNothing{}, kDrop{.dropsConnections = true},
        kBoth{.dropsConnections = true, .refreshes = true};
    for (const auto& test : {
             WakeUpCase{"idle", {.isRunning = true}, kNothing, kBoth, kDrop},
             WakeUpCase{"idle after a failure", {.isRunning = true, .hasFailed = true}, kNothing, kBoth, kBoth},
             WakeUpCase{"fetching", {.isRunning = true, .isFetching = true}, kNothing, kBoth, kNothing},
             WakeUpCase{"hidden", {}, kNothing, kDrop, kDrop},
             WakeUpCase{"one refresh alone", {.isFetching = true}, kNothing, kNothing, kNothing},
         }) {
        auto state = test.state;
        state.nextFetchDue = kDue;
        auto past = state;
        auto network = state;
        EXPECT_EQ(afterSleep(state, kDue - 1ns), test.afterSleepBefore) << test.what;
        EXPECT_FALSE(state.isStale);
        EXPECT_EQ(afterSleep(past, kDue), test.afterSleepPast) << test.what;
        EXPECT_EQ(past.isStale, test.state.isFetching && test.state.isRunning) << test.what;
        EXPECT_EQ(afterNetworkCameBack(network), test.afterNetwork) << test.what;
        EXPECT_EQ(network.isDoubtful, test.state.isFetching) << test.what;
    }
}

struct EndCase {
    const char* what;
    CycleState state;
    FetchEnd end;
    AfterFetch after;
    bool hasFailed;
};

TEST(RefreshDecisionsTest, WhatTheEndOfAFetchMeans) {
    const AfterFetch kDropped{.isShown = false, .takesQuotes = false, .next = Next::Early};
    for (const auto& test : {
             EndCase{"good", {.hasFailed = true}, {}, {}, false},
             EndCase{"failed", {}, {.hasError = true}, {}, true},
             EndCase{"failed while the network came",
                     {.isDoubtful = true},
                     {.hasError = true},
                     {.next = Next::Early},
                     true},
             EndCase{"good while the network came", {.isDoubtful = true}, {}, {}, false},
             EndCase{"cut off by a sleep", {.isStale = true}, {.isSameWish = false}, kDropped, false},
             EndCase{"other coins", {}, {.isSameWish = false}, {.next = Next::Everything}, false},
             EndCase{"other source",
                     {},
                     {.isSameSource = false, .isSameWish = false},
                     {.takesQuotes = false, .next = Next::Everything},
                     false},
             EndCase{"other network", {}, {.isFeeRight = false}, {.next = Next::OnlyGas}, false},
             EndCase{"the fee alone is no success",
                     {.hasFailed = true},
                     {.askedForQuotes = false},
                     {.takesQuotes = false},
                     true},
         }) {
        auto state = test.state;
        state.isFetching = true;
        EXPECT_EQ(afterFetch(state, test.end), test.after) << test.what;
        EXPECT_FALSE(state.isFetching);
        EXPECT_EQ(state.hasFailed, test.hasFailed) << test.what;
    }
}

}  // namespace
}  // namespace glintar::presenter
