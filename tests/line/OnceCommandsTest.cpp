#include "line/CompareCommand.h"
#include "line/DiagnoseCommand.h"
#include "line/RecordedOutput.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace glintar::line {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class OnceCommandsTest : public testing::Test {
protected:
    OnceCommandsTest() {
        test::ship(machine, R"({"sources":[
            {"id":"a","name":"Alpha","supports_batch":false,"url_template":"https://a.test/{ID}",
             "response_type":"object","price_path":"p"},
            {"id":"b","name":"贝塔","supports_batch":false,"url_template":"https://b.test/{ID}",
             "response_type":"object","price_path":"p"},
            {"id":"c","name":"Gamma","supports_batch":false,"url_template":"https://c.test/{ID}",
             "response_type":"object","price_path":"p"}]})");
        test::saveCoins(machine.preferences, {test::coin("btc", "bitcoin"), test::coin("long one", "one")});
        machine.http.answer("a.test/bitcoin", R"({"p":99})");
        machine.http.answer("b.test/bitcoin", R"({"p":100})");
        machine.http.answer("b.test/one", R"({"p":0.5})");
    }

    template <class Command>
    std::string run(const app::Arguments& arguments) {
        Command command(machine.platform(), output, arguments, [this](int status) { finished.push_back(status); });
        command.start();
        machine.advance(1s);
        std::string all;
        for (const auto& line : std::exchange(output.lines, {})) {
            all += line + "\n";
        }
        return all;
    }

    platform::VirtualPlatform machine;
    RecordedOutput output;
    std::vector<int> finished;
};

constexpr auto* kTable =
    "[simulated]     BTC            LONG ONE\n"
    "Alpha         99.00                   -\n"
    "贝塔         100.00 ▲  1.000%    0.5000 ▲\n"
    "Gamma             -                   -\n";

TEST_F(OnceCommandsTest, CompareShowsEverySourceBesideTheOthers) {
    EXPECT_EQ(run<CompareCommand>({.demo = true}), kTable);
    EXPECT_THAT(output.redrawn, IsEmpty());
    output.terminal = true;
    machine.http.latencies = {5ms, 5ms, 500ms};
    EXPECT_EQ(run<CompareCommand>({.demo = true}), kTable);
    ASSERT_GE(output.redrawn.size(), 3) << "empty, with what had come, and cleared";
    EXPECT_TRUE(output.redrawn.at(1).contains("99.00"));
    EXPECT_EQ(output.redrawn.back(), "");
    EXPECT_EQ(
        run<CompareCommand>({.format = app::Format::Json}),
        R"({"time":"03:04:07","coins":[{"id":"bitcoin","name":"btc","prices":[)"
        R"({"source":"b","name":"贝塔","price":100,"gap":"1.000%"},{"source":"a","name":"Alpha","price":99,"gap":null}]},)"
        R"({"id":"one","name":"long one","prices":[{"source":"b","name":"贝塔","price":0.5,"gap":null}]}]})"
        "\n");
    EXPECT_THAT(finished, ElementsAre(0, 0, 0));
    machine.http.answer("test/", "down", 500);
    run<CompareCommand>({});
    EXPECT_EQ(finished.back(), 1);
}

TEST_F(OnceCommandsTest, DiagnosePrintsEachServiceAsItIsTested) {
    machine.http.answer("a.test/bitcoin", "", 404);
    EXPECT_EQ(run<DiagnoseCommand>({}), "Alpha API     5ms\nGamma API  Failed\n贝塔 API      5ms\n");
    machine.http.answer("c.test/", "");
    machine.http.latency = 400ms;
    EXPECT_EQ(run<DiagnoseCommand>({.format = app::Format::Json}),
              R"({"name":"Alpha API","url":"https://a.test/bitcoin","reached":true,"latency":400})"
              "\n"
              R"({"name":"Gamma API","url":"https://c.test/bitcoin","reached":true,"latency":400})"
              "\n")
        << "the third is under way";
    EXPECT_THAT(finished, ElementsAre(1));
}

}  // namespace
}  // namespace glintar::line
