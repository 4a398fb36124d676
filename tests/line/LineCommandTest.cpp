#include "line/BarFormat.h"
#include "line/LineCommand.h"
#include "line/RecordedOutput.h"
#include "platform/virtual/VirtualPlatform.h"
#include "presenter/LineText.h"
#include "support/Market.h"
#include "text/Address.h"

#include <gmock/gmock.h>

namespace glintar::line {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class LineCommandTest : public testing::Test {
protected:
    LineCommandTest() {
        test::ship(machine);
        test::saveCoins(machine.preferences, {test::coin(" btc ", "bitcoin", 60000)});
        machine.http.answer("gecko.test", test::geckoAnswer({"bitcoin"}, 64012.55));
    }

    void run(const app::Arguments& arguments, platform::Duration duration) {
        command.emplace(machine.platform(), output, arguments,
                        LineCommand::Environment{.finish = [this](int status) { finished.push_back(status); },
                                                 .openDashboard = [this] { ++dashboards; }});
        command->start();
        machine.advance(duration);
    }

    platform::VirtualPlatform machine;
    RecordedOutput output;
    std::vector<int> finished;
    int dashboards = 0;
    std::optional<LineCommand> command;
};

TEST_F(LineCommandTest, PrintsOneLineForEachCompletedRefresh) {
    run({}, 62s);
    EXPECT_THAT(output.lines, ElementsAre("BTC 64012.55 (60000.00)", "BTC 64012.55 (60000.00)"));
    machine.http.fail("gecko.test", {platform::HttpError::Kind::Connection, "down"});
    machine.advance(60s);
    EXPECT_EQ(output.lines.back(), "⚠️ Net Error | BTC 64012.55 (60000.00)") << "old prices do not pass for new ones";
    EXPECT_THAT(finished, IsEmpty());
    command->interrupt();
    EXPECT_THAT(finished, ElementsAre(0));
}

TEST_F(LineCommandTest, ItIsALineWhateverTheDisplayMode) {
    machine.preferences.setInteger("displayMode", 1);
    run({}, 2s);
    EXPECT_THAT(output.lines, SizeIs(1));
}

TEST_F(LineCommandTest, OnceAsksAtOnceAndEndsWithWhatItGot) {
    run({.once = true}, 10ms);
    EXPECT_THAT(output.lines, ElementsAre("BTC 64012.55 (60000.00)"));
    EXPECT_THAT(finished, ElementsAre(0));
    EXPECT_EQ(machine.runLoop.pending(), 0U) << "no timer is started";
}

TEST_F(LineCommandTest, BothDocumentsAreLookedAfterUnlessItRunsOnceOrOnASimulatedMarket) {
    machine.bundle.server = "https://config.test";
    for (const auto& [once, demo] : {std::pair{true, false}, {false, true}, {false, false}}) {
        command.reset();
        machine.registry.clear();
        run({.once = once, .demo = demo}, 2s);
        const int expected = once || demo ? 0 : 1;
        EXPECT_EQ(machine.http.asked("config.test/api/api_endpoints_ver.json"), expected);
        EXPECT_EQ(machine.http.asked("config.test/api/coingecko_coins_list_ver.json"), expected);
    }
}

TEST_F(LineCommandTest, OnceAsksTheKeyRingOnlyWhereTheSourceTakesAKey) {
    run({.once = true}, 10ms);
    const int reads = machine.secrets.reads;
    EXPECT_GT(reads, 0);
    machine.preferences.setString("selectedSourceID", "gate");
    run({.once = true}, 10ms);
    EXPECT_EQ(machine.secrets.reads, reads);
}

TEST_F(LineCommandTest, OnceWithoutAPriceSaysWhyAndEndsWithOne) {
    machine.http.answer("gecko.test", "", 404);
    run({.once = true}, 1s);
    EXPECT_THAT(output.lines, ElementsAre("⚠️ Error"));
    EXPECT_THAT(finished, ElementsAre(1));
}

TEST_F(LineCommandTest, OnceWithoutACoinEndsAtOnce) {
    test::saveCoins(machine.preferences, {});
    run({.once = true}, 0s);
    EXPECT_THAT(output.lines, ElementsAre("No Price Data"));
    EXPECT_THAT(finished, ElementsAre(1));
    run({.format = app::Format::Json, .once = true}, 0s);
    EXPECT_THAT(output.lines.at(1), HasSubstr(R"("tooltip":"⚠️ No Price Data @ 03:04:05","text":"No Price Data")"));
    EXPECT_THAT(machine.http.requests, IsEmpty());
}

TEST_F(LineCommandTest, QuotesOfOtherCoinsAloneMakeAnEmptyLine) {
    machine.http.answer("gecko.test", test::geckoAnswer({"ethereum"}, 1));
    run({.format = app::Format::Json, .once = true}, 1s);
    EXPECT_THAT(output.lines.at(0), HasSubstr(R"("tooltip":"Waiting for data...","text":"","coins":[])"));
    EXPECT_THAT(finished, ElementsAre(1));
}

TEST_F(LineCommandTest, AnInterruptBeforeTheOnlyRefreshIsAFailure) {
    run({.once = true}, 0s);
    command->interrupt();
    EXPECT_THAT(finished, ElementsAre(1));
}

TEST_F(LineCommandTest, AnOutputThatCannotBeWrittenIsAFailureWithAReason) {
    run({}, 2s);
    output.onClosed("No space left on device");
    EXPECT_THAT(finished, ElementsAre(1));
    EXPECT_TRUE(machine.console.printed("⚠️ [Line] No space left on device"));
}

TEST_F(LineCommandTest, ATerminalShowsTheLineInPlaceWithACountdown) {
    output.terminal = true;
    run({}, 1500ms);
    EXPECT_EQ(output.redrawn.front(), "Loading...");
    EXPECT_EQ(output.redrawn.back(), "○ 60s BTC 64012.55 (60000.00)");
    const auto drawn = output.redrawn.size();
    machine.advance(10s);
    EXPECT_EQ(output.redrawn.size(), drawn + 10) << "once a second, not ten times";
    machine.advance(10s);
    EXPECT_EQ(output.redrawn.back(), "◔ 40s BTC 64012.55 (60000.00)");
    EXPECT_THAT(output.lines, IsEmpty());
}

TEST_F(LineCommandTest, ATerminalGetsPlainLinesWhereTheyAreDataOrTheLast) {
    output.terminal = true;
    run({.format = app::Format::Json}, 2s);
    run({.once = true}, 2s);
    EXPECT_THAT(output.redrawn, IsEmpty());
    EXPECT_THAT(output.lines, SizeIs(2));
}

TEST_F(LineCommandTest, JsonHoldsTheWholeAnswer) {
    for (const auto* key : {"showChange24h", "showSparkline", "showGasFee"}) {
        machine.preferences.setBoolean(key, true);
    }
    test::saveCoins(machine.preferences,
                    {test::coin("btc", "bitcoin", 60000), test::coin("X", "missing"), test::coin("E", "ethereum", 0)});
    machine.http.answer("gecko.test",
                        R"([{"id":"bitcoin","current_price":0.1,"change":1.25,"high":3,"image":"https://i/\"1.png",)"
                        R"("spark":{"price":[1,0.30000000000000004]}},{"id":"ethereum","current_price":1e21}])");
    machine.http.answer("eth.test", R"({"result":{"average":1.5}})");
    run({.format = app::Format::Json, .once = true}, 1s);
    ASSERT_THAT(output.lines, SizeIs(1));
    const std::string expected =
        R"j({"time":"03:04:05","updated":"2026-01-02T03:04:05+00:00","stale":false,"source":"coingecko","error":null,)j"
        R"j("tooltip":"Last Updated: 03:04:05\nNo price at CoinGecko: X",)j"
        R"j("text":"BTC 0.1000 (60000.00) +1.25% █▁ | E 1000000000000000000000.00 | ⛽ 1.50G ($31500000000000000.000)",)j"
        R"j("coins":[{"id":"bitcoin","name":"btc","price":0.1,"reference":60000,"change24h":1.25,"high24h":3,)j"
        R"j("low24h":null,"sparkline":[1,0.30000000000000004],"image":"https://i/\"1.png",)j"
        R"j("updated":"2026-01-02T03:04:05+00:00","stale":false},)j"
        R"j({"id":"ethereum","name":"E","price":1e+21,"reference":null,"change24h":null,"high24h":null,)j"
        R"j("low24h":null,"sparkline":null,"image":null,"updated":"2026-01-02T03:04:05+00:00","stale":false}],)j"
        R"j("gas":{"network":"ethereum","fee":1.5,"transferCost":3.15e+16}})j";
    EXPECT_EQ(output.lines[0], expected);
}

TEST_F(LineCommandTest, EachBarIsWrittenInItsOwnMarkupWhateverACoinIsCalled) {
    test::saveCoins(machine.preferences, {test::coin("A&B <c>\n#%{\"'", "bitcoin"), test::coin("שקל", "ethereum")});
    machine.http.answer("gecko.test", R"([{"id":"bitcoin","current_price":2,"change":-1.5,"high":3,"low":2},)"
                                      R"({"id":"ethereum","current_price":1.5}])");
    using app::Format;
    for (const auto& [format, expected] :
         {std::pair{Format::Waybar,
                    R"({"text":"A&amp;B &lt;C&gt;�#%{&quot;&#39; 2.00 | שקל 1.50","alt":"ok","tooltip":)"
                    R"("A&amp;B &lt;C&gt;�#%{&quot;&#39; 2.00 -1.50% 3.0/2.0\nשקל 1.50\nLast Updated: 03:04:05",)"
                    R"("class":["ok","down"],"percentage":0,"time":"03:04:05",)"
                    R"("updated":"2026-01-02T03:04:05+00:00","stale":false})"},
          {Format::I3bar, R"([{"full_text":"A&B <C>�#%{\"' 2.00","short_text":"A&B <C>�#%{\"' 2.00",)"
                          R"("color":"#ff453a","min_width":"A&B <C>�#%{\"' 0.00","name":"glintar",)"
                          R"("instance":"bitcoin"},{"full_text":"שקל 1.50","short_text":"שקל 1.50",)"
                          R"("min_width":"שקל 0.00","name":"glintar","instance":"ethereum"}],)"},
          {Format::Genmon,
           "<txt>A&amp;B &lt;C&gt;\ufffd#%{&quot;&#39; 2.00 | שקל 1.50</txt>\n<tool>A&amp;B &lt;C&gt;\ufffd"
           "#%{&quot;&#39; 2.00 -1.50% 3.0/2.0\nשקל 1.50\nLast Updated: 03:04:05</tool>\n<txtclick>glintar "
           "--dashboard</txtclick>"},
          {Format::Tmux, "A&B <C>\ufffd##%{\"' 2.00 | שקל 1.50"},
          {Format::Polybar, "A&B <C>\ufffd#% {\"' 2.00 | שקל 1.50"}}) {
        run({.format = format, .once = true}, 10ms);
        EXPECT_EQ(output.lines.back(), text::replaceAll(expected, "\\ufffd", "\ufffd"));
    }
}

TEST_F(LineCommandTest, FieldsAndCoinGoBeforeThePreferences) {
    machine.preferences.setBoolean("showGasFee", true);
    test::saveCoins(machine.preferences, {test::coin("btc", "bitcoin", 5), test::coin("eth", "ethereum")});
    machine.http.answer("gecko.test", R"([{"id":"bitcoin","current_price":2,"change":1.5},)"
                                      R"({"id":"ethereum","current_price":1}])");
    machine.http.answer("eth.test", R"({"result":{"average":1.5}})");
    for (const auto& [fields, coin, expected] :
         {std::tuple<std::optional<app::Fields>, std::optional<std::string>, std::string>{{}, "ethereum", "ETH 1.0000"},
          {app::Fields{.price = true, .change = true}, "bitcoin", "BTC 2.00 +1.50%"},
          {app::Fields{.change = true}, {}, "BTC +1.50% | ETH"},
          {app::Fields{.fee = true}, {}, "⛽ 1.50G ($0.000)"},
          {{}, "dogecoin", "No Price Data"}}) {
        run({.once = true, .fields = fields, .coin = coin}, 1s);
        EXPECT_EQ(output.lines.back(), expected);
        EXPECT_EQ(finished.back(), coin == "dogecoin" ? 1 : 0);
    }
}

TEST_F(LineCommandTest, AHiddenBarAsksNothingAndAClickAsksEveryTwoSecondsAtMost) {
    run({.format = app::Format::I3bar}, 2s);
    EXPECT_THAT(output.lines.at(0), HasSubstr(R"("click_events":true})"));
    command->onSignal(kStopSignal);
    machine.advance(30s);
    EXPECT_EQ(machine.runLoop.pending(), 0U);
    command->onSignal(kContSignal);
    machine.advance(1s);
    EXPECT_EQ(machine.http.asked("gecko.test"), 1) << "none was due";
    command->onSignal(kStopSignal);
    machine.notifications.post(config::kCoinsUpdated);
    machine.advance(1s);
    EXPECT_EQ(machine.http.asked("gecko.test"), 1);
    command->onSignal(kContSignal);
    machine.advance(100ms);
    EXPECT_EQ(machine.http.asked("gecko.test"), 2);
    const auto click = [this] {
        for (const auto* line : {"[", R"({"name":"glintar","button":1})", R"(,{"button":3})", R"(,{"button":2})",
                                 R"(,{"button":2})", "nonsense{"}) {
            command->onInput(line);
        }
        machine.advance(2100ms);
    };
    click();
    EXPECT_EQ(machine.http.asked("gecko.test"), 2) << "too soon";
    click();
    EXPECT_EQ(machine.http.asked("gecko.test"), 3);
    EXPECT_EQ(dashboards, 2);
}

TEST_F(LineCommandTest, ASimulatedMarketIsMarked) {
    run({.once = true, .demo = true}, 1s);
    EXPECT_EQ(output.lines.at(0), "[simulated] BTC 64012.55 (60000.00)");
    run({.format = app::Format::I3bar, .once = true, .demo = true}, 1s);
    EXPECT_THAT(output.lines.back(), HasSubstr(R"("short_text":"[simulated] BTC 64012.55")"));
}

TEST(LineFormatTest, NamesCannotBreakTheLine) {
    presenter::StatusLine line;
    line.coins.push_back({.coin = test::coin("\u2003a\nb\x1b[31mß ", "x"), .price = "1.00"});
    line.gas = presenter::GasPart{.network = market::GasNetwork::Bitcoin, .fee = 7, .text = "7 sat"};
    EXPECT_EQ(presenter::plainText(line), "A\uFFFDB\uFFFD[31MSS 1.00 | ₿ 7 sat");
}

}  // namespace
}  // namespace glintar::line
