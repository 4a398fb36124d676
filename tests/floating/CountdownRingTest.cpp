#include "floating/CountdownRing.h"

#include <gtest/gtest.h>

#include <chrono>
#include <utility>

namespace glintar::floating {
namespace {

using namespace std::chrono_literals;
using platform::Duration;
using platform::Instant;
using platform::Seconds;

class CountdownRingTest : public testing::Test {
protected:
    Instant at(Duration time) const { return start + time; }
    double progress(Duration time) const { return ring.progress(at(time)); }
    double shown(Instant time) const { return CountdownRing::shownProgress(ring.progress(time), 1); }

    const Instant start{24h};
    CountdownRing ring{start};
};

TEST_F(CountdownRingTest, ItLooksOnceASecondAndMovesThereWithinTheNext) {
    EXPECT_EQ(progress(0s), 1);
    ring.setNextRefresh(at(400ms), at(50s), Seconds(50));
    const std::pair<Duration, double> fall[] = {{1s, 1},        {1500ms, 0.99},  {2s, 0.98}, {2250ms, 0.975},
                                                {50s, 1 / 50.}, {50500ms, 0.01}, {51s, 0.0}, {90s, 0.0}};
    for (const auto& [time, expected] : fall) {
        EXPECT_NEAR(progress(time), expected, 1e-9) << Seconds(time).count();
    }

    ring.setNextRefresh(at(60300ms), at(110500ms), Seconds(50));  // at 61 s it will see 49.5 of 50
    const std::pair<Duration, double> refill[] = {
        {60300ms, 0.0}, {61s, 0.0}, {61500ms, 0.495}, {62s, 0.99}, {63s, 0.97}};
    for (const auto& [time, expected] : refill) {
        EXPECT_NEAR(progress(time), expected, 1e-9) << Seconds(time).count();
    }

    ring.setNextRefresh(at(61500ms), at(61500ms), Seconds(50));
    EXPECT_NEAR(progress(61750ms), 0.7425, 1e-9) << "what has begun to move arrives first";
    EXPECT_NEAR(progress(62500ms), 0.495, 1e-9);
    ring.setNextRefresh(at(70s), at(170s), Seconds(50));
    EXPECT_EQ(progress(72s), 1) << "more than a whole interval is left";
}

TEST_F(CountdownRingTest, NobodyIsWokenWhileItLooksTheSame) {
    EXPECT_GT(ring.unchangedFor(start, 1), 1s) << "the refresh is due, but nothing moves before the first look";
    for (const auto& [interval, steps] : {std::pair{60s, 57}, std::pair{3600s, 57}, std::pair{10s, 57}}) {
        CountdownRing fresh(start);
        ring = fresh;
        ring.setNextRefresh(start, start + interval, Seconds(interval));
        int seen = 0;
        Instant now = start;
        while (const auto wait = ring.unchangedFor(now, 1)) {
            EXPECT_EQ(shown(now + *wait - 3ms), shown(now)) << "it came too late";
            EXPECT_LT(shown(now + *wait), shown(now)) << "it came for nothing";
            now += *wait;
            ASSERT_LT(++seen, 100);
        }
        EXPECT_EQ(seen, steps);
        EXPECT_EQ(ring.progress(now), 0);
    }
}

}  // namespace
}  // namespace glintar::floating
