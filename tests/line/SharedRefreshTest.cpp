#include "line/BarFormat.h"
#include "line/LineCommand.h"
#include "line/RecordedOutput.h"
#include "platform/Noticeboard.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gmock/gmock.h>

#include <csignal>
#include <list>

namespace glintar::line {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

/// One copy of the program, whose board it shares with the others.
struct Copy final : platform::Noticeboard {
    struct Common {
        std::optional<std::string> page;
        std::map<std::int64_t, Copy*> locks;
        std::list<Copy> copies;
        bool isFull = false;
    };

    Copy(Common& shared, platform::Duration passed, const app::Arguments& arguments) : common(shared) {
        test::ship(machine);
        test::saveCoins(machine.preferences, {test::coin("btc", "bitcoin")});
        machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 2));
        machine.advance(passed);
        command.emplace(machine.platform(), output, arguments,
                        LineCommand::Environment{.finish = [this](int status) { finished = status; }, .board = this});
    }
    ~Copy() override { command.reset(); }

    std::optional<std::string> read() const override { return common.page; }
    bool post(std::string_view text) override {
        if (!common.isFull) {
            common.page = text;
            for (auto& copy : common.copies) {
                copy.machine.runLoop.post([&copy] { copy.onPosted ? copy.onPosted() : void(); });
            }
        }
        return !common.isFull;
    }
    Lock lock(std::int64_t number) override {
        return common.locks.try_emplace(number, this).first->second == this ? Lock::Held : Lock::Taken;
    }
    void unlock() override {
        std::erase_if(common.locks, [this](const auto& entry) { return entry.second == this; });
    }
    bool askForRefresh(std::int64_t number) override {
        common.locks.at(number)->command->onSignal(SIGUSR1);
        return true;
    }
    std::string seal(std::string_view text) const override {
        return std::to_string(std::hash<std::string_view>()(text));
    }
    bool isSealOf(std::string_view sealed, std::string_view text) const override { return sealed == seal(text); }

    int asked() const { return machine.http.asked("gecko.test"); }

    Common& common;
    platform::VirtualPlatform machine;
    RecordedOutput output;
    std::optional<LineCommand> command;
    std::optional<int> finished;
    bool isStopped = false;
};

class SharedRefreshTest : public testing::Test {
protected:
    ~SharedRefreshTest() override {
        while (!copies.empty()) {
            copies.pop_front();  // the others hear of it
        }
    }
    Copy& start(const app::Arguments& arguments = {}, std::string_view key = "") {
        auto& copy = copies.emplace_back(common, passed, arguments);
        if (!key.empty()) {
            static_cast<void>(copy.machine.secrets.add("apiKey_coingecko", "GlintarUser", std::string(key)));
        }
        copy.command->start();
        return copy;
    }
    void advance(platform::Duration duration) {
        for (const auto end = passed + duration; passed < end; passed += 10ms) {
            for (auto& copy : copies) {
                copy.isStopped ? void() : copy.machine.advance(10ms);
            }
        }
    }
    int asked() const {
        int count = 0;
        for (const auto& copy : copies) {
            count += copy.asked();
        }
        return count;
    }

    Copy::Common common;
    std::list<Copy>& copies = common.copies;
    platform::Duration passed{};
};

TEST_F(SharedRefreshTest, ThreeCopiesAskAsOftenAsOneAndTheNextTakesOverWithoutAsking) {
    for (const auto& arguments : {app::Arguments{}, {.format = app::Format::Json}, {.coin = "bitcoin"}}) {
        start(arguments, "s3cret");
    }
    advance(62s);
    EXPECT_EQ(asked(), 3);
    EXPECT_THAT(*common.page, testing::Not(HasSubstr("s3cret")));
    for (const auto& copy : copies) {
        EXPECT_EQ(copy.output.lines.size(), 3U);
    }
    const int before = copies.front().asked();
    copies.pop_front();
    advance(3s);
    EXPECT_EQ(common.locks.size(), 1U) << "handed over";
    EXPECT_EQ(copies.back().output.lines.size(), 3U) << "nothing new";
    copies.back().command->onSignal(SIGUSR1);
    advance(1s);
    EXPECT_EQ(asked() + before, 4) << "by the one that took over";
    advance(40s);
    EXPECT_EQ(asked() + before, 5);
}

TEST_F(SharedRefreshTest, AStoppedPublisherIsReplacedAndFollowsOnceItWakes) {
    auto& first = start();
    auto& second = start();
    advance(2s);
    first.isStopped = true;
    advance(60s);
    EXPECT_EQ(asked(), 1);
    advance(5s);
    EXPECT_EQ(second.asked(), 1) << "5 s overdue";
    first.isStopped = false;
    first.machine.advance(65s);
    advance(120s);
    EXPECT_EQ(first.asked(), 1);
    EXPECT_EQ(second.asked(), 3);
    EXPECT_EQ(first.output.lines.size(), 4U);
}

TEST_F(SharedRefreshTest, WhoStartsOrIsSeenAgainShowsTheNewestAndNothingOld) {
    auto& publisher = start();
    auto& hidden = start({.format = app::Format::I3bar});
    advance(2s);
    hidden.command->onSignal(kStopSignal);
    const auto before = hidden.output.lines.size();
    advance(2s);
    publisher.command->onSignal(SIGUSR1);
    advance(3s);
    EXPECT_EQ(hidden.output.lines.size(), before);
    hidden.command->onSignal(kContSignal);
    advance(10ms);
    EXPECT_EQ(hidden.output.lines.size(), before + 1);
    EXPECT_EQ(asked(), 2);

    publisher.isStopped = hidden.isStopped = true;
    advance(70s);
    auto& late = start();
    advance(1s);
    EXPECT_THAT(late.output.lines, testing::IsEmpty()) << "nobody keeps the page up to date";
    advance(6s);
    EXPECT_EQ(late.output.lines, std::vector<std::string>{"BTC 2.00"});
    EXPECT_EQ(late.asked(), 1);
}

TEST_F(SharedRefreshTest, WhatAStoppedPublisherGetsTooLateDoesNotCount) {
    auto& first = start();
    auto& second = start();
    second.machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 5));
    advance(2s);
    first.machine.http.latency = 3s;
    advance(60s);
    EXPECT_EQ(first.asked(), 2);
    first.isStopped = true;
    advance(8s);
    first.isStopped = false;
    first.machine.advance(8s);
    advance(1s);
    EXPECT_THAT(first.output.lines, testing::ElementsAre("BTC 2.00", "BTC 5.00"));
    EXPECT_EQ(second.output.lines.back(), "BTC 5.00");
}

TEST_F(SharedRefreshTest, OnceTakesWhatIsPublishedWhileItIsYoung) {
    start({.once = true}, "s3cret");
    advance(10ms);
    EXPECT_THAT(*common.page, HasSubstr(R"("interval":30)"));
    copies.pop_front();
    common.page.reset();
    start({.once = true});
    advance(1s);
    for (const auto& [wait, count] : {std::pair{58s, 0}, {2s, 1}}) {
        advance(wait);
        auto& copy = start({.once = true});
        advance(10ms);
        EXPECT_EQ(copy.finished, 0);
        EXPECT_EQ(copy.output.lines.size(), 1U);
        EXPECT_EQ(copy.asked(), count);
    }
}

TEST_F(SharedRefreshTest, PricesThatAnotherGotAreAsOldAsThere) {
    start();
    auto& follower = start({.format = app::Format::Json});
    advance(2s);
    copies.front().machine.http.fail("gecko.test", {platform::HttpError::Kind::Connection, "down"});
    const auto fresh = follower.output.lines.back();
    advance(60s);
    EXPECT_THAT(fresh, HasSubstr(R"("stale":false)"));
    const auto updated = fresh.substr(fresh.find(R"("updated")"), 36);
    EXPECT_THAT(follower.output.lines.back(), testing::AllOf(HasSubstr(R"("stale":true)"), HasSubstr(updated)));
}

TEST_F(SharedRefreshTest, NewCoinsAreAskedForOnceWhoeverHearsOfThemFirst) {
    for (int i = 0; i < 3; ++i) {
        start();
    }
    advance(2s);
    for (auto copy = copies.rbegin(); copy != copies.rend(); ++copy) {  // the one that asks comes last
        test::saveCoins(copy->machine.preferences, {test::coin("eth", "ethereum")});
        copy->machine.http.answer("gecko.test", test::geckoAnswer({"ethereum"}, 3));
        copy->machine.notifications.post(config::kCoinsUpdated);
        advance(100ms);
    }
    advance(10s);
    EXPECT_EQ(asked(), 2);
    for (const auto& copy : copies) {
        EXPECT_EQ(copy.output.lines.back(), "ETH 3.00");
    }
}

TEST_F(SharedRefreshTest, ACopyThatWantsSomethingElseAsksForItselfUntilItWantsTheSame) {
    start();
    auto& keyed = start({}, "s3cret");
    auto& other = start();
    test::saveCoins(other.machine.preferences, {test::coin("eth", "ethereum")});
    other.machine.http.answer("gecko.test", test::geckoAnswer({"ethereum"}, 3));
    advance(75s);
    EXPECT_EQ(other.output.lines, std::vector<std::string>(2, "ETH 3.00"));
    EXPECT_EQ(copies.front().asked(), 2);
    EXPECT_EQ(other.asked(), 2);
    EXPECT_EQ(keyed.asked(), 3) << "every 30 s";
    test::saveCoins(other.machine.preferences, {test::coin("btc", "bitcoin")});
    other.machine.notifications.post(config::kCoinsUpdated);
    advance(120s);
    EXPECT_EQ(other.output.lines.back(), "BTC 2.00");
    EXPECT_EQ(other.asked(), 2);
}

TEST_F(SharedRefreshTest, WithADamagedPageOrNoPlaceForOneEveryCopyStillHasPrices) {
    common.page = R"({"generation":7,"interval":60,"quotes":[{"id":)";
    start();
    start();
    start();
    advance(2s);
    EXPECT_EQ(asked(), 1);
    common.isFull = true;
    advance(130s);
    for (const auto& copy : copies) {
        EXPECT_GE(copy.output.lines.size(), 3U);
    }
}

}  // namespace
}  // namespace glintar::line
