#include "platform/secret/LibsecretStore.h"
#include "platform/secret/LoadedSecretStore.h"
#include "platform/secret/PrivateBus.h"
#include "platform/secret/SecretCache.h"
#include "platform/virtual/VirtualRunLoop.h"
#include "platform/virtual/VirtualStores.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>

namespace glintar::platform {
namespace {

// Far above the 100 ms that a call may wait, for machines that are busy, and far below the 25 s that a service which
// never answers would take.
constexpr auto kAtOnce = std::chrono::milliseconds{400};

using namespace std::chrono_literals;
using Ring = PrivateBus::Ring;
using Status = SecretStatus;

constexpr const char* kPrompter = "org.gnome.keyring.SystemPrompter";

class LibsecretStoreTest : public testing::Test {
protected:
    std::unique_ptr<LibsecretStore> makeStore() {
        auto made = std::make_unique<LibsecretStore>(loop, bus.address());
        made->onChange = [this] { ++changes; };
        return made;
    }

    std::string read(std::string_view service = "exchange") { return read(*store, service); }
    static std::string read(LibsecretStore& from, std::string_view service = "exchange") {
        const auto found = from.find(service, "me");
        static constexpr std::array kNames{"", "<none>", "<locked>", "<unavailable>", "<pending>", "<failed>"};
        return found.status == Status::Done ? found.bytes : kNames.at(static_cast<std::size_t>(found.status));
    }

    /// Waits until a change is told of and the item reads like this.
    bool changesTo(const std::string& value, std::string_view service = "exchange") {
        const int before = changes;
        return test::eventually([&] {
            loop.settle();
            return changes > before && read(service) == value;
        });
    }

    /// Waits until a store that has cached nothing reads like this.
    bool isStored(const std::string& value, std::string_view service = "exchange") {
        LibsecretStore fresh(loop, bus.address());
        return test::eventually([&] {
            loop.settle();
            return read(fresh, service) == value;
        });
    }

    bool reads(const std::string& value, std::string_view service = "exchange") {
        return test::eventually([&] { return read(service) == value; });
    }

    template <class Work>
    static std::chrono::milliseconds timed(Work work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::floor<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    }

    PrivateBus bus;
    VirtualRunLoop loop;
    int changes = 0;
    std::unique_ptr<LibsecretStore> store = makeStore();
};

TEST_F(LibsecretStoreTest, KeepsSecretsAndReadsThemAsWrittenAtOnce) {
    bus.startKeyRing(Ring::Open);
    const std::string bytes("\xff\xfe\0\x01zz\x80", 7);
    EXPECT_TRUE(reads("<none>"));
    EXPECT_EQ(store->remove("exchange", "me"), Status::NotFound);
    EXPECT_EQ(store->add("exchange", "me", bytes), Status::Done);
    EXPECT_EQ(read(), bytes);
    EXPECT_EQ(store->add("other", "me", "second"), Status::Done);
    EXPECT_TRUE(isStored(bytes));
    EXPECT_TRUE(isStored("second", "other"));
    EXPECT_EQ(store->find("exchange", "you").status, Status::NotFound);

    EXPECT_EQ(store->add("exchange", "me", "new"), Status::Done);
    EXPECT_EQ(read(), "new");
    EXPECT_TRUE(isStored("new"));
    EXPECT_EQ(store->remove("other", "me"), Status::Done);
    EXPECT_EQ(read("other"), "<none>");
    EXPECT_TRUE(isStored("<none>", "other"));
    EXPECT_EQ(bus.itemCount("exchange"), 1U);

    // The last write before the end is not lost, nor is a removal.
    store->add("other", "me", "last");
    store->remove("exchange", "me");
    store.reset();
    EXPECT_TRUE(isStored("last", "other"));
    EXPECT_TRUE(isStored("<none>"));
    loop.settle();
    EXPECT_EQ(changes, 0) << "our own writes are no news";
}

TEST_F(LibsecretStoreTest, TellsOfSecretsWrittenElsewhereOnlyWhereTheyReadDifferently) {
    bus.startKeyRing(Ring::Open);
    EXPECT_TRUE(reads("<none>"));
    bus.elsewhere({"write", "unasked", "me", "x"});
    bus.elsewhere({"write", "exchange", "me", "theirs"});
    EXPECT_TRUE(changesTo("theirs"));
    EXPECT_TRUE(reads("<none>", "later"));
    const int before = changes;
    bus.elsewhere({"write", "exchange", "me", "theirs"});
    bus.elsewhere({"write", "later", "me", "y"});
    EXPECT_TRUE(changesTo("y", "later"));
    EXPECT_EQ(changes, before + 1);
}

TEST_F(LibsecretStoreTest, TellsOfAChangeEvenIfItWasReadBefore) {
    bus.startKeyRing(Ring::Open);
    EXPECT_TRUE(reads("<none>"));
    bus.elsewhere({"write", "exchange", "me", "theirs"});
    EXPECT_TRUE(reads("theirs"));
    EXPECT_EQ(changes, 0);
    loop.settle();
    EXPECT_EQ(changes, 1) << "whoever read it earlier has to know";
}

TEST_F(LibsecretStoreTest, ReadsALockedKeyRingWithoutAskingAndFollowsItsUnlocking) {
    bus.startKeyRing(Ring::Open);
    store->add("exchange", "me", "secret");
    EXPECT_TRUE(isStored("secret"));
    store = makeStore();
    bus.stopKeyRing();
    const auto prompter = bus.standIn("silent", kPrompter);
    bus.startKeyRing(Ring::Locked);

    EXPECT_TRUE(reads("<locked>"));
    EXPECT_EQ(bus.callsOfStandIn(), 0U);

    // A write asks the user, who does not react: nothing waits for it.
    store->add("new", "me", "typed");
    EXPECT_TRUE(test::eventually([&] { return bus.callsOfStandIn() > 0; }));
    EXPECT_EQ(read("new"), "typed");
    EXPECT_TRUE(reads("<none>", "never seen"));

    bus.elsewhere({"unlock"});
    EXPECT_TRUE(changesTo("secret"));
    bus.elsewhere({"lock"});
    EXPECT_TRUE(changesTo("<locked>"));

    EXPECT_LT(timed([&] { store.reset(); }), kAtOnce) << "with the prompt still open";
}

TEST_F(LibsecretStoreTest, TakesBackWhatTheServiceRefuses) {
    bus.startKeyRing(Ring::Open);
    store->add("exchange", "me", "old");
    EXPECT_TRUE(isStored("old"));
    const auto prompter = bus.standIn("refusing", kPrompter);
    bus.elsewhere({"lock"});
    EXPECT_TRUE(changesTo("<locked>"));

    EXPECT_EQ(store->add("exchange", "me", "new"), Status::Done);
    EXPECT_TRUE(changesTo("<locked>")) << "the prompt was turned down";
    EXPECT_EQ(store->remove("exchange", "me"), Status::Done);
    EXPECT_TRUE(changesTo("<locked>")) << "what is locked cannot be removed";
    store->add("never read", "me", "new");
    EXPECT_TRUE(changesTo("<none>", "never read"));

    bus.elsewhere({"unlock"});
    EXPECT_TRUE(changesTo("old"));
}

TEST_F(LibsecretStoreTest, SurvivesTheEndOfTheKeyRingAndFindsTheNextOne) {
    bus.startKeyRing(Ring::Open);
    bus.elsewhere({"write", "exchange", "me", "old"});
    EXPECT_TRUE(reads("old"));
    EXPECT_TRUE(reads("<none>", "asked before"));
    bus.stopKeyRing();

    EXPECT_EQ(read(), "old");
    EXPECT_LT(timed([&] { EXPECT_EQ(read("other"), "<unavailable>"); }), kAtOnce);
    store->add("exchange", "me", "new");
    EXPECT_TRUE(changesTo("old"));
    EXPECT_TRUE(reads("<unavailable>", "third"));
    EXPECT_EQ(read(), "old") << "however often it is looked for";
    EXPECT_EQ(read("asked before"), "<none>") << "the end itself leads to no call, which could start another key ring";

    bus.startKeyRing(Ring::Open);
    EXPECT_TRUE(changesTo("<none>", "other"));
    bus.elsewhere({"write", "other", "me", "theirs"});
    EXPECT_TRUE(changesTo("theirs", "other"));
}

TEST_F(LibsecretStoreTest, WaitsOnceForAServiceThatNeverAnswersAndFindsTheNextOne) {
    auto deaf = bus.standIn("silent", "org.freedesktop.secrets");
    EXPECT_LT(timed([&] { EXPECT_EQ(store->peek("peeked", "me").status, Status::Pending); }), 60ms);
    store.reset();
    store = makeStore();
    const auto first = timed([&] { EXPECT_EQ(read(), "<pending>"); });
    EXPECT_GE(first, 100ms);
    EXPECT_LT(first, kAtOnce);
    EXPECT_LT(timed([&] {
                  EXPECT_EQ(read(), "<pending>");
                  EXPECT_EQ(read("other"), "<pending>");
                  store->add("third", "me", "typed");
                  EXPECT_EQ(read("third"), "typed");
                  EXPECT_TRUE(store->isWriting());
                  store->remove("fourth", "me");
              }),
              20ms);
    EXPECT_TRUE(test::eventually([&] { return bus.callsOfStandIn() > 0; }));
    EXPECT_LT(timed([&] { store.reset(); }), kAtOnce);

    store = makeStore();
    EXPECT_EQ(read(), "<pending>");
    deaf.stop();
    bus.startKeyRing(Ring::Open);
    EXPECT_TRUE(changesTo("<none>"));
}

TEST_F(LibsecretStoreTest, NeverCallsBackOnceItIsGone) {
    bus.startKeyRing(Ring::Open);
    EXPECT_TRUE(reads("<none>"));
    bus.elsewhere({"write", "exchange", "me", "theirs"});
    EXPECT_TRUE(test::eventually([&] { return loop.pending() > 0; }));
    store.reset();
    loop.settle();
    EXPECT_EQ(changes, 0);
}

TEST_F(LibsecretStoreTest, MayEndInItsOwnCallback) {
    bus.startKeyRing(Ring::Open);
    EXPECT_TRUE(reads("<none>"));
    store->onChange = [this] {
        store.reset();
        ++changes;
    };
    bus.elsewhere({"write", "exchange", "me", "theirs"});
    EXPECT_TRUE(test::eventually([&] {
        loop.settle();
        return changes == 1;
    }));
    EXPECT_EQ(store, nullptr);
}

TEST_F(LibsecretStoreTest, TriesABusThatDoesNotAnswerAgainLater) {
    for (const std::string service : {"exchange", "after the bus has ended"}) {
        EXPECT_TRUE(reads("<unavailable>", service));
        bus.startKeyRing(Ring::Open);
        bus.elsewhere({"write", service, "me", "theirs"});
        loop.advance(31s);
        EXPECT_EQ(read(service), "<unavailable>") << "it is asked in the background";
        EXPECT_TRUE(changesTo("theirs", service));
        bus.stop();
    }
    EXPECT_EQ(read(), "theirs");
}

TEST_F(LibsecretStoreTest, WithoutABusNothingIsLoadedAndNoneIsStarted) {
    VirtualConsole console;
    LoadedSecretStore loaded(loop, console);
    for (const char* const address : {"", "autolaunch:", "disabled:", static_cast<const char*>(nullptr)}) {
        address ? setenv("DBUS_SESSION_BUS_ADDRESS", address, 1) : unsetenv("DBUS_SESSION_BUS_ADDRESS");
        EXPECT_EQ(loaded.find("exchange", "me").status, Status::Unavailable);
        EXPECT_EQ(loaded.add("exchange", "me", "typed"), Status::Unavailable);
        EXPECT_EQ(loaded.remove("exchange", "me"), Status::Unavailable);
    }
    EXPECT_TRUE(console.lines.empty()) << "the module was looked for";
}

using Notice = SecretCache::Notice;
using Want = SecretCache::Want;

const SecretKey kKey{"exchange", "me"};
const SecretAnswer kUnavailable{SecretStatus::Unavailable, {}};

TEST(SecretCacheTest, DropsAnAnswerThatWasAskedForBeforeOurWrite) {
    SecretCache cache;
    EXPECT_EQ(cache.want(kKey, {}), Want::First);
    EXPECT_EQ(cache.takeReads().size(), 1U);
    cache.add(kKey, "new");
    const auto writes = cache.takeWrites();
    ASSERT_EQ(writes.size(), 1U);
    EXPECT_EQ(cache.wrote(writes[0], SecretCache::Outcome::Accepted), Notice::None);

    EXPECT_EQ(cache.answered(kKey, SecretAnswer::found("old"), {}), Notice::None);
    EXPECT_EQ(cache.find(kKey).view(), "new");
    EXPECT_EQ(cache.takeReads().size(), 1U) << "asked anew";
}

TEST(SecretCacheTest, SendsTheNewestWriteAfterTheOneUnderWay) {
    SecretCache cache;
    cache.add(kKey, "first");
    const auto first = cache.takeWrites();
    ASSERT_EQ(first.size(), 1U);
    cache.add(kKey, "second");
    cache.add(kKey, "third");
    EXPECT_TRUE(cache.takeWrites().empty()) << "one at a time, or they could overtake each other";
    EXPECT_EQ(cache.wrote(first[0], SecretCache::Outcome::Refused), Notice::None);
    EXPECT_EQ(cache.find(kKey).view(), "third");
    const auto next = cache.takeWrites();
    ASSERT_EQ(next.size(), 1U);
    EXPECT_EQ(next[0].secret.view(), "third");
}

TEST(SecretCacheTest, AsksForWhatIsOutOfReachEvery30Seconds) {
    SecretCache cache;
    EXPECT_EQ(cache.want(kKey, {}), Want::First);
    EXPECT_EQ(cache.takeReads().size(), 1U);
    EXPECT_EQ(cache.answered(kKey, kUnavailable, Instant{1s}), Notice::None) << "nobody has been told otherwise";
    EXPECT_EQ(cache.want(kKey, Instant{30s}), Want::Nothing);
    EXPECT_EQ(cache.want(kKey, Instant{31s}), Want::Again);
    EXPECT_EQ(cache.want(kKey, Instant{31s}), Want::Nothing) << "already asked";
}

}  // namespace
}  // namespace glintar::platform
