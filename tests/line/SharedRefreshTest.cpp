#include "line/LineCommand.h"
#include "line/RecordedOutput.h"
#include "platform/Noticeboard.h"
#include "platform/virtual/VirtualPlatform.h"
#include "presenter/Publication.h"
#include "support/Market.h"

#include <gmock/gmock.h>

#include <list>

namespace glintar::line {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

struct Copy;

/// What the boards of all copies have in common.
struct Shared {
    std::optional<std::string> page;
    std::map<std::int64_t, Copy*> locks;
    std::list<Copy>* copies = nullptr;
    bool isFull = false;
};

struct Copy final : platform::Noticeboard {
    Copy(Shared& common, const app::Arguments& arguments) : shared(common) {
        test::ship(machine);
        test::saveCoins(machine.preferences, {test::coin("btc", "bitcoin")});
        machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 2));
        command.emplace(machine.platform(), output, arguments, [this](int status) { finished = status; }, this);
    }
    ~Copy() override { command.reset(); }

    std::optional<std::string> read() const override { return shared.page; }
    bool post(std::string_view text) override;
    Lock lock(std::int64_t number) override {
        auto& holder = shared.locks[number];
        if (holder && holder != this) {
            return Lock::Taken;
        }
        holder = this;
        return Lock::Held;
    }
    void unlock() override {
        std::erase_if(shared.locks, [this](const auto& entry) { return entry.second == this; });
    }
    std::int64_t self() const override { return reinterpret_cast<std::intptr_t>(this); }
    void askForRefresh(std::int64_t process) override { reinterpret_cast<Copy*>(process)->command->refresh(); }

    Shared& shared;
    platform::VirtualPlatform machine;
    RecordedOutput output;
    std::optional<LineCommand> command;
    std::optional<int> finished;
    bool isStopped = false;
};

bool Copy::post(std::string_view text) {
    EXPECT_THAT(std::string(text), testing::Not(HasSubstr("s3cret")));
    if (shared.isFull) {
        return false;
    }
    shared.page = text;
    for (auto& copy : *shared.copies) {
        copy.machine.runLoop.post([&copy] {
            if (copy.onPosted) {
                copy.onPosted();
            }
        });
    }
    return true;
}

class SharedRefreshTest : public testing::Test {
protected:
    SharedRefreshTest() { shared.copies = &copies; }
    ~SharedRefreshTest() override {
        while (!copies.empty()) {
            copies.pop_front();
        }
    }

    Copy& add(const app::Arguments& arguments = {}) {
        auto& copy = copies.emplace_back(shared, arguments);
        copy.machine.advance(passed);
        return copy;
    }
    Copy& start(const app::Arguments& arguments = {}) {
        auto& copy = add(arguments);
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
    int asked() {
        int count = 0;
        for (auto& copy : copies) {
            count += copy.machine.http.asked("gecko.test");
        }
        return count;
    }

    Shared shared;
    std::list<Copy> copies;
    platform::Duration passed{};
};

TEST_F(SharedRefreshTest, ThreeCopiesAskAsOftenAsOneAndTheNextTakesOverWithoutAsking) {
    for (const auto& arguments : {app::Arguments{}, {.format = app::Format::Json}, {.coin = "bitcoin"}}) {
        auto& copy = start(arguments);
        static_cast<void>(copy.machine.secrets.add("apiKey_coingecko", "GlintarUser", "s3cret"));
    }
    advance(62s);
    EXPECT_EQ(asked(), 3);
    for (const auto& copy : copies) {
        EXPECT_EQ(copy.output.lines.size(), 3U);
    }
    const int before = copies.front().machine.http.asked("gecko.test");
    copies.pop_front();
    advance(3s);
    copies.back().command->refresh();
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
    EXPECT_EQ(second.machine.http.asked("gecko.test"), 1) << "5 s overdue";
    first.isStopped = false;
    first.machine.advance(65s);
    advance(120s);
    EXPECT_EQ(first.machine.http.asked("gecko.test"), 1);
    EXPECT_EQ(second.machine.http.asked("gecko.test"), 3);
    EXPECT_EQ(first.output.lines.size(), 4U);
}

TEST_F(SharedRefreshTest, OnceTakesWhatIsPublishedWhileItIsYoung) {
    start({.once = true});
    advance(1s);
    for (const auto wait : {58s, 2s}) {
        advance(wait);
        auto& copy = start({.once = true});
        advance(10ms);
        EXPECT_EQ(copy.finished, 0);
        EXPECT_EQ(copy.output.lines.size(), 1U);
        EXPECT_EQ(copy.machine.http.asked("gecko.test"), wait == 2s ? 1 : 0);
    }
}

TEST_F(SharedRefreshTest, ACopyThatWantsSomethingElseAsksForItself) {
    start();
    auto& other = add();
    test::saveCoins(other.machine.preferences, {test::coin("eth", "ethereum")});
    other.machine.http.answer("gecko.test", test::geckoAnswer({"ethereum"}, 3));
    other.command->start();
    advance(75s);
    EXPECT_EQ(other.output.lines, std::vector<std::string>(2, "ETH 3.00"));
    for (auto& copy : copies) {
        EXPECT_EQ(copy.machine.http.asked("gecko.test"), 2);
    }
    test::saveCoins(other.machine.preferences, {test::coin("btc", "bitcoin")});
    other.machine.notifications.post(config::kCoinsUpdated);
    advance(120s);
    EXPECT_EQ(other.output.lines.back(), "BTC 2.00");
    EXPECT_EQ(other.machine.http.asked("gecko.test"), 2);
}

TEST_F(SharedRefreshTest, WithADamagedPageOrNoPlaceForOneEveryCopyStillHasPrices) {
    shared.page = R"({"generation":7,"interval":60,"quotes":[{"id":)";
    start();
    start();
    advance(2s);
    EXPECT_EQ(asked(), 1);
    shared.isFull = true;
    advance(130s);
    for (const auto& copy : copies) {
        EXPECT_GE(copy.output.lines.size(), 3U);
    }
}

}  // namespace
}  // namespace glintar::line
