// What the refresh cycle makes of a machine that sleeps and of a network that comes and goes.

#include "platform/DesktopEvents.h"
#include "presenter/RefreshCycle.h"

namespace glintar::presenter {
namespace {

class SleepAndNetworkTest : public RefreshCycleTest {
protected:
    void wake() { machine.notifications.post(platform::kMachineResumed); }
    void networkBack() { machine.notifications.post(platform::kNetworkCameBack); }
    void breakNetwork() { machine.http.fail("gecko.test", {platform::HttpError::Kind::Connection, "no way"}); }
    void mendNetwork() { machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 65000)); }
};

TEST_F(SleepAndNetworkTest, ARefreshThatFellDueDuringSleepComesAtOnceAndOnce) {
    begin();
    machine.advance(10s);
    machine.runLoop.sleep(30s);
    wake();
    machine.advance(2s);
    EXPECT_EQ(quotesAsked(), 1) << "nothing was due";

    machine.runLoop.sleep(3h);
    wake();
    wake();  // two sources may tell of it
    machine.advance(2s);
    EXPECT_EQ(quotesAsked(), 2);
    machine.advance(57s);
    EXPECT_EQ(quotesAsked(), 2) << "it stands for the one that was due";
    machine.advance(2s);
    EXPECT_EQ(quotesAsked(), 3);
}

TEST_F(SleepAndNetworkTest, AnErrorIsGoneSoonAfterTheNetworkIsBack) {
    begin();
    networkBack();
    machine.advance(10s);
    EXPECT_EQ(quotesAsked(), 1) << "a line without an error needs no request";

    breakNetwork();
    machine.advance(51s);
    ASSERT_EQ(surface.line.error, "Network Error");
    const int asked = quotesAsked();
    mendNetwork();
    networkBack();
    machine.advance(2s);
    EXPECT_THAT(shownPrices(), testing::ElementsAre("65000.00"));
    EXPECT_EQ(quotesAsked(), asked + 1);
    networkBack();
    machine.advance(50s);
    EXPECT_EQ(quotesAsked(), asked + 1);
}

TEST_F(SleepAndNetworkTest, ANetworkThatFlapsCostsARequestEveryTwoSecondsAtMost) {
    breakNetwork();
    begin();
    const int asked = quotesAsked();
    for (int i = 0; i < 100; ++i) {
        networkBack();
        machine.advance(100ms);
    }
    EXPECT_LE(quotesAsked(), asked + 6);
    EXPECT_GE(quotesAsked(), asked + 3);
}

TEST_F(SleepAndNetworkTest, AnAnswerFromBeforeTheSleepIsNotTheLastWord) {
    begin();
    machine.http.latency = 1s;
    machine.advance(60s);  // the next fetch is under way
    const int asked = quotesAsked();
    machine.runLoop.sleep(1h);
    wake();
    mendNetwork();
    machine.advance(4s);
    EXPECT_EQ(quotesAsked(), asked + 1);
    EXPECT_THAT(shownPrices(), testing::ElementsAre("65000.00"));
    machine.advance(50s);
    EXPECT_EQ(quotesAsked(), asked + 1);
}

TEST_F(SleepAndNetworkTest, AFetchThatSleepCutInTwoIsMadeAgainWithinTwoSeconds) {
    showGas(1);
    begin();
    machine.http.latency = 1h;  // a dead connection says nothing
    machine.advance(60s);       // the next fetch is under way
    const int asked = quotesAsked();
    machine.runLoop.sleep(1h);
    machine.http.latency = 10ms;
    mendNetwork();
    const int lines = surface.linesShown;
    wake();
    machine.advance(2s);
    EXPECT_EQ(surface.linesShown, lines + 1) << "an error of the program's own making is not shown";
    EXPECT_EQ(quotesAsked(), asked + 1);
    EXPECT_THAT(shownPrices(), testing::ElementsAre("65000.00"));
    EXPECT_TRUE(surface.line.gas);
}

TEST_F(SleepAndNetworkTest, ConnectionsFromBeforeANetworkChangeAreNotUsedAgain) {
    begin();
    networkBack();
    EXPECT_EQ(machine.http.drops, 1);
    machine.http.latency = 5s;
    machine.advance(60s);
    networkBack();
    EXPECT_EQ(machine.http.drops, 1) << "a fetch that may well succeed is left alone";

    machine.http.latency = 1h;
    breakNetwork();
    machine.advance(5s);
    machine.http.latencies = {10ms};
    machine.advance(60s);  // it has failed
    machine.advance(60s);  // the next one hangs
    mendNetwork();
    machine.http.latency = 10ms;
    networkBack();
    EXPECT_EQ(machine.http.drops, 2);
    machine.advance(2s);
    EXPECT_THAT(shownPrices(), testing::ElementsAre("65000.00"));
}

}  // namespace
}  // namespace glintar::presenter
