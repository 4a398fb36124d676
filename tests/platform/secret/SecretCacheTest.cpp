#include "platform/secret/SecretCache.h"

#include <gtest/gtest.h>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;
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
