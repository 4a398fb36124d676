#include "market/CryptoServiceTest.h"

#include "config/ConfigFiles.h"
#include "keystore/KeychainHelper.h"
#include "text/Address.h"

#include <gmock/gmock.h>

namespace glintar::market {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Key;
using testing::SizeIs;

TEST_F(CryptoServiceTest, ABatchAsksOnceForAllCoins) {
    machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin", "ethereum"}, 5));
    EXPECT_THAT(fetch(both).quotes, ElementsAre(Key("bitcoin"), Key("ethereum")));
    ASSERT_THAT(machine.http.requests, SizeIs(1));
    const auto& request = machine.http.requests.front();
    EXPECT_EQ(request.url, "https://gecko.test/markets?ids=bitcoin,ethereum");
    EXPECT_EQ(request.method, platform::HttpMethod::Get);
    EXPECT_EQ(request.stallTimeout, 10s);
    EXPECT_EQ(request.timeout, 60s);
    EXPECT_THAT(request.headers, ElementsAre(platform::HttpHeader{"User-Agent", "Mozilla/5.0"},
                                             platform::HttpHeader{"Accept", "application/json"}));
    EXPECT_TRUE(request.originHeaders.empty());
}

TEST_F(CryptoServiceTest, ABatchByNameSendsTheNamesAsTheyAreInBothPlaces) {
    select("simple");
    fetch(both);
    EXPECT_EQ(machine.http.requests.front().url, "https://simple.test/p?ids=%20btc%0A%7CEth&again=%20btc%0A%7CEth");
}

TEST_F(CryptoServiceTest, OneRequestForEachCoinUsesTheBareUpperCaseSymbol) {
    select("gate");
    machine.http.answer("BTC_USDT&id=bitcoin", R"([{"last":"7"}])");
    machine.http.answer("ETH_USDT&id=ethereum", R"([{"last":"8"}])");
    const auto outcome = fetch(both);
    EXPECT_EQ(outcome.quotes.at("bitcoin").price, 7);
    EXPECT_EQ(outcome.quotes.at("ethereum").price, 8);
    EXPECT_TRUE(machine.console.printed("🔗 gate | 币: bitcoin | Symbol: BTC"));
    EXPECT_TRUE(machine.console.printed("⚡️ [Network] Perform Request : gate -- Code:200"));
    EXPECT_TRUE(machine.console.printed("⚡️ [Network Path] https://gate.test/t?pair=BTC_USDT&id=bitcoin"));
    EXPECT_TRUE(machine.console.printed("   👉 生成 URL: https://gate.test/t?pair=BTC_USDT&id=bitcoin"));
}

TEST_F(CryptoServiceTest, WhatAUserTypedBreaksNeitherAddressNorLog) {
    select("gate");
    fetch({test::coin("A\nB", "x/../y\r\nz")});
    EXPECT_EQ(machine.http.requests.at(0).url, "https://gate.test/t?pair=A%0AB_USDT&id=x/../y%0D%0Az");
    EXPECT_TRUE(machine.console.printed("🔗 gate | 币: x/../y\uFFFD\uFFFDz | Symbol: A\uFFFDB"));
    std::string accents = "e";  // one character for a reader
    for (int i = 0; i < 9000; ++i) {
        accents += "\u0301";
    }
    fetch({test::coin(std::string(9000, 'A'), "a"), test::coin("B", accents)});
    for (const auto& line : machine.console.lines) {
        EXPECT_LT(line.text.size(), 9000);
    }
}

TEST_F(CryptoServiceTest, PartialSuccessIsNoErrorAndTheLastFailureSpeaksForAll) {
    select("gate");
    machine.http.answer("BTC_USDT", R"([{"last":"7"}])");
    machine.http.answer("ETH_USDT", "", 404);
    auto outcome = fetch(both);
    EXPECT_THAT(outcome.quotes, ElementsAre(Key("bitcoin")));
    EXPECT_FALSE(outcome.error);

    machine.http.answer("BTC_USDT", "", 403);
    machine.http.latencies = {200ms, 10ms};  // Bitcoin's failure comes last
    EXPECT_EQ(fetch(both).error, "HTTP 403");
    machine.http.answer("BTC_USDT", "{}");
    machine.http.answer("ETH_USDT", "{}");
    outcome = fetch(both);
    EXPECT_TRUE(outcome.quotes.empty());
    EXPECT_FALSE(outcome.error) << "an answer without a price is no error";
}

TEST_F(CryptoServiceTest, WithoutCoinsABatchStillAsksAndSingleRequestsDoNot) {
    machine.http.answer("gecko.test", "[]");
    EXPECT_FALSE(fetch({}).error);
    EXPECT_EQ(machine.http.requests.front().url, "https://gecko.test/markets?ids=");
    select("gate");
    const auto outcome = fetch({});
    EXPECT_TRUE(outcome.quotes.empty());
    EXPECT_FALSE(outcome.error);
    EXPECT_EQ(machine.http.asked("gate.test"), 0);
}

TEST_F(CryptoServiceTest, TheKeyGoesOnlyToASourceThatNamesAHeader) {
    const keystore::KeychainHelper keys(machine.platform());
    machine.http.answer(".test", "", 503);
    struct Row {
        std::string source, key, header;
    };
    for (const auto& row : {Row{"coingecko", "CG-1", "x-key"}, Row{"coingecko", "", ""}, Row{"coingecko", "a\r\nb", ""},
                            Row{"coingecko", " a", ""}, Row{"coingecko", "caf\xc3\xa9", ""},
                            Row{"coingecko", "a\xff", ""}, Row{"gate", "G-1", ""}, Row{"binance", "B-1", "x-each"}}) {
        SCOPED_TRACE(row.source + " " + row.key);
        select(row.source);
        keys.save(row.key, "apiKey_" + row.source);
        machine.http.requests.clear();
        fetch(btc);
        EXPECT_THAT(machine.http.requests, SizeIs(2)) << "the second is the retry";
        for (const auto& request : machine.http.requests) {
            EXPECT_THAT(request.originHeaders, SizeIs(row.header.empty() ? 0 : 1));
            EXPECT_THAT(request.originHeaders, Each(platform::HttpHeader{row.header, row.key}));
            EXPECT_THAT(request.headers, SizeIs(2));
        }
    }
}

TEST_F(CryptoServiceTest, AKeyTakesThePlaceOfAnotherHeaderOfItsName) {
    test::ship(machine, text::replaceAll(test::kConfiguration, "x-key", "user-agent"));
    keystore::KeychainHelper(machine.platform()).save("CG-1", "apiKey_coingecko");
    fetch(btc);
    EXPECT_THAT(machine.http.requests.back().headers, ElementsAre(platform::HttpHeader{"Accept", "application/json"}));
}

TEST_F(CryptoServiceTest, AStatusIsReducedToABodyOrAShortText) {
    struct Row {
        std::vector<int> statuses;
        std::optional<std::string> error;
    };
    for (const auto& [statuses, error] : {Row{{200}, {}}, Row{{503, 200}, {}}, Row{{502, 500}, "Server Error (500)"},
                                          Row{{429}, "Limit Exceeded (429)"}, Row{{503, 429}, "Limit Exceeded (429)"},
                                          Row{{404}, "HTTP 404"}, Row{{401}, "HTTP 401"}, Row{{204}, "HTTP 204"},
                                          Row{{206}, "HTTP 206"}, Row{{304}, "HTTP 304"}, Row{{0}, "HTTP 0"}}) {
        machine.registry.clear();
        machine.http.requests.clear();
        for (const int status : statuses) {
            machine.http.answerOnce("gecko.test", status == 200 ? test::geckoAnswer({"bitcoin"}, 5) : "x", status);
        }
        const auto outcome = fetch(btc);
        EXPECT_EQ(outcome.error, error) << statuses[0];
        EXPECT_EQ(outcome.quotes.size(), error ? 0U : 1U);
        EXPECT_EQ(machine.http.asked("gecko.test"), statuses.size());
    }
}

TEST_F(CryptoServiceTest, TheRetryComesASecondAfterTheServerErrorWhateverIsConfiguredMeanwhile) {
    machine.http.answer("gecko.test", "", 503);
    const auto outcome = startFetch(btc);
    test::ship(machine, R"({"sources":[]})");
    machine.notifications.post(config::kConfigUpdated);
    machine.advance(1s);
    EXPECT_EQ(machine.http.asked("gecko.test"), 1);
    machine.notifications.post(config::kConfigUpdated);
    machine.advance(10ms);
    EXPECT_EQ(machine.http.asked("gecko.test"), 2);
    machine.advance(1s);
    EXPECT_EQ(outcome->error, "Server Error (503)");
}

TEST_F(CryptoServiceTest, ATransportFailureIsNotRetried) {
    machine.http.fail("gecko.test", {platform::HttpError::Kind::Timeout, "no byte for 10 s"});
    EXPECT_EQ(fetch(btc).error, "Network Error");
    EXPECT_THAT(machine.http.requests, SizeIs(1));
    EXPECT_TRUE(machine.console.printed("❌ Network Error: no byte for 10 s"));
}

TEST_F(CryptoServiceTest, AnAnswerWithoutABodyIsUnknown) {
    machine.http.answer("gecko.test", "");
    EXPECT_EQ(fetch(btc).error, "Unknown Error");
    machine.http.answer("gecko.test", "<html>");
    EXPECT_EQ(fetch(btc).error, std::nullopt) << "a body that cannot be read is no error";
    select("gate");
    machine.http.answer("gate.test", "");
    EXPECT_EQ(fetch(btc).error, std::nullopt) << "nor is a coin that was answered with nothing";
}

TEST_F(CryptoServiceTest, AThrottlingSourceIsLeftAloneForAMinuteThenAnnounced) {
    std::vector<double> announced;
    const auto start = machine.runLoop.now();
    const auto observation = machine.notifications.observe(
        kCoolDownEnded, [&] { announced.push_back(platform::Seconds(machine.runLoop.now() - start).count()); });
    machine.http.latency = 0s;
    machine.http.answer("gecko.test", "Throttled", 429);
    machine.http.answer("gate.test", R"([{"last":1}])");
    EXPECT_EQ(fetch(btc).error, "Limit Exceeded (429)");
    EXPECT_TRUE(machine.console.printed("🚨 [coingecko] 429 Detected! Cooling down..."));

    machine.notifications.post(config::kConfigUpdated);  // which changes nothing about it
    machine.advance(4500ms);                             // 9.5 s after the answer
    EXPECT_EQ(fetch(btc).error, "Cooling down for error 429 (50s)") << "whole seconds, cut off";
    EXPECT_EQ(machine.http.asked("gecko.test"), 1) << "nothing is sent meanwhile";
    select("gate");
    EXPECT_FALSE(fetch(btc).error) << "other sources are not affected";

    select("coingecko");
    machine.advance(40s);
    EXPECT_TRUE(announced.empty());
    machine.advance(1s);
    EXPECT_THAT(announced, ElementsAre(60.5));
    fetch(btc);
    EXPECT_EQ(machine.http.asked("gecko.test"), 2);
    machine.registry.clear();
    machine.advance(60s);
    EXPECT_THAT(announced, SizeIs(1)) << "nobody is left to announce the second";
}

TEST_F(CryptoServiceTest, ASecondThrottlingMovesTheEndAndBothAreAnnounced) {
    std::vector<double> announced;
    const auto start = machine.runLoop.now();
    const auto observation = machine.notifications.observe(
        kCoolDownEnded, [&] { announced.push_back(platform::Seconds(machine.runLoop.now() - start).count()); });
    select("gate");
    machine.http.answer("gate.test", "", 429);
    machine.http.latencies = {0s, 2s};
    startFetch(both);
    machine.advance(59s);
    EXPECT_EQ(startFetch(btc)->error, "Cooling down for error 429 (3s)");
    machine.advance(10s);
    EXPECT_THAT(announced, ElementsAre(60.5, 62.5));
}

TEST_F(CryptoServiceTest, TheCoolDownEndsWhileTheMachineSleeps) {
    machine.http.answer("gecko.test", "Throttled", 429);
    fetch(btc);
    machine.runLoop.sleep(1h);
    fetch(btc);
    EXPECT_EQ(machine.http.asked("gecko.test"), 2);
}

TEST_F(CryptoServiceTest, ARetryDuringACoolDownIsRefused) {
    select("gate");
    machine.http.answerOnce("BTC_USDT", "", 503);
    machine.http.answerOnce("ETH_USDT", "", 429);
    machine.http.latencies = {10ms, 500ms};
    const auto outcome = fetch(both);
    EXPECT_EQ(outcome.error, "Rate Limited (429)") << "the refused retry is the last to fail";
    EXPECT_EQ(machine.http.asked("gate.test"), 2);
}

TEST_F(CryptoServiceTest, WithoutAConfigurationOrAnAddressNothingIsSent) {
    struct Row {
        std::string source;
        std::optional<std::string> error;
    };
    for (const auto& row : {Row{"nobody", "Config Missing"}, Row{"", "Config Missing"}, Row{"broken", "Bad URL"},
                            Row{"broken_each", std::nullopt}}) {
        select(row.source);
        EXPECT_EQ(fetch(btc).error, row.error) << row.source;
    }
    EXPECT_THAT(machine.http.requests, SizeIs(0));
}

TEST_F(CryptoServiceTest, ARetryThatOutlivesItCompletes) {
    machine.http.answer("gecko.test", "", 503);
    const auto outcome = startFetch(btc);
    machine.advance(100ms);  // the retry is waiting
    machine.registry.clear();
    machine.advance(5s);
    EXPECT_EQ(outcome->completions, 1);
    EXPECT_EQ(outcome->error, "Network Error");
}

}  // namespace
}  // namespace glintar::market
