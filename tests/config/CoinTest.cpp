#include "config/Coin.h"
#include "platform/virtual/VirtualPlatform.h"
#include "text/Address.h"

#include <gmock/gmock.h>

#include <cmath>

namespace glintar::config {
namespace {

constexpr std::string_view kTwo = R"([{"id":"00112233-4455-6677-8899-AABBCCDDEEFF","displayName":"BTC",)"
                                  R"("apiId":"bitcoin","referencePrice":65000.5},)"
                                  R"({"id":"10112233-4455-6677-8899-AABBCCDDEEFF","displayName":"é\"","apiId":""}])";

TEST(CoinTest, WritesTheStoredFormAndReadsItBack) {
    const std::vector<Coin> coins{
        {.id = "00112233-4455-6677-8899-aabbccddeeff",
         .displayName = "BTC",
         .apiId = "bitcoin",
         .referencePrice = 65000.5},
        {.id = "10112233-4455-6677-8899-AABBCCDDEEFF", .displayName = "é\"", .apiId = "", .referencePrice = {}},
    };
    EXPECT_EQ(encodeCoins(coins), kTwo);
    const auto read = decodeCoins(std::string(kTwo));
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ(encodeCoins(*read), kTwo);
    EXPECT_EQ(read->at(0).referencePrice, 65000.5);
    EXPECT_EQ(read->at(1).referencePrice, std::nullopt);
    EXPECT_THAT(encodeCoins({{.id = "x", .displayName = "", .apiId = "", .referencePrice = 0}}),
                testing::HasSubstr(R"("referencePrice":0})"));
    EXPECT_EQ(encodeCoins({}), "[]");
}

TEST(CoinTest, ReadsIdentifiersInAnyCaseAndAnEmptyReferencePrice) {
    const auto lower = text::replaceAll(kTwo, "AABBCCDDEEFF", "aabbccddeeff");
    const auto read = decodeCoins(text::replaceAll(lower, "65000.5", "null"));
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ(read->at(0).id, "00112233-4455-6677-8899-AABBCCDDEEFF");
    EXPECT_EQ(read->at(0).referencePrice, std::nullopt);
}

TEST(CoinTest, OneBadElementRefusesTheList) {
    struct Case {
        std::string_view what;
        std::string_view with;
    };
    for (const auto& [what, with] : {
             Case{R"("id":"1)", R"("ID":"1)"},
             {R"("displayName":"BTC",)", ""},
             {R"("apiId":"")", R"("apiId":7)"},
             {R"("apiId":"bitcoin",)", ""},
             {"65000.5", R"("65000.5")"},
             {"10112233-", "10112233"},
             {"10112233-", "1011223-3"},
             {"10112233-", "10112233A"},
             {"10112233-", "1011223G-"},
             {"10112233-", "{10112233-"},
             {R"(,{"id")", R"(,null,{"id")"},
             {R"("}])", R"("})"},
         }) {
        const std::string text = text::replaceAll(kTwo, what, with);
        ASSERT_NE(text, kTwo) << what;
        EXPECT_FALSE(decodeCoins(text)) << text;
    }
    EXPECT_FALSE(decodeCoins("{}"));
    EXPECT_FALSE(decodeCoins(""));
}

TEST(CoinTest, LoadsTheSavedListOrTheDefault) {
    platform::VirtualPlatform machine;
    const auto load = [&] { return loadSavedCoins(machine.platform()); };

    const auto fresh = load();
    ASSERT_EQ(fresh.size(), 1u);
    EXPECT_EQ(fresh[0].displayName + " " + fresh[0].apiId, "BTC bitcoin");
    EXPECT_EQ(fresh[0].referencePrice, 0);
    EXPECT_THAT(fresh[0].id,
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
    EXPECT_NE(load()[0].id, fresh[0].id);

    machine.preferences.setData(kSavedCoinsKey, kTwo);
    EXPECT_EQ(encodeCoins(load()), kTwo);
    machine.preferences.setData(kSavedCoinsKey, "[]");
    EXPECT_TRUE(load().empty()) << "an empty list is the user's choice";
    machine.preferences.setData(kSavedCoinsKey, text::replaceAll(kTwo, R"("apiId")", R"("api")"));
    EXPECT_EQ(load().size(), 1u);
    machine.preferences.setString(kSavedCoinsKey, kTwo);
    EXPECT_EQ(load().size(), 1u) << "a text is not data";
    EXPECT_TRUE(machine.console.lines.empty());
}

}  // namespace
}  // namespace glintar::config
