#include "line/SettingsCommand.h"
#include "platform/TextOutput.h"
#include "platform/virtual/VirtualPlatform.h"
#include "platform/virtual/VirtualWorkspace.h"
#include "support/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace glintar::line {
namespace {

using namespace std::chrono_literals;

class Lines final : public platform::TextOutput {
public:
    bool isTerminal() const override { return false; }
    void printLine(std::string_view line) override { (text += line) += '\n'; }
    void redrawLine(std::string_view) override {}
    std::string text;
};

class SettingsCommandTest : public testing::Test {
protected:
    SettingsCommandTest() {
        test::ship(machine);
        machine.files.contents["/bundle/coingecko_coins_list.json"] =
            R"([{"id":"bitcoin","symbol":"btc","name":"B"},{"id":"ethereum","symbol":"eth","name":"E"}])";
    }

    /// Status, output and error of the command.
    std::string run(const std::vector<std::string_view>& words, std::chrono::milliseconds time = 100ms) {
        output.text.clear();
        machine.console.lines.clear();
        std::optional<int> status;
        SettingsCommand command(
            {machine.platform(), loginItem, output, [this] { return typed; }, [&](int s) { status = s; }});
        command.start(words);
        machine.advance(time);
        std::string error;
        for (const auto& line : machine.console.lines) {
            error += line.text.starts_with("glintar: ") ? line.text.substr(9, line.text.find('\n') - 9) : "";
        }
        return fmt::format("{}|{}|{}", status.value_or(-1), output.text, error);
    }

    platform::VirtualPlatform machine;
    platform::VirtualLoginItem loginItem;
    Lines output;
    std::optional<std::string> typed;
};

TEST_F(SettingsCommandTest, CommandsDoWhatTheWindowDoesAndSayItInTheSameWords) {
    for (const auto& [words, expected] : std::vector<std::pair<std::vector<std::string_view>, std::string>>{
             {{"coins", "search", "e"}, "0|ETH (ethereum)\n|"},
             {{"coins", "search", "e", "--format", "json"}, "0|[\"ETH (ethereum)\"]\n|"},
             {{"coins", "add", "eth", "--ref", "3000"}, "0||"},
             {{"coins", "add", "ETH"}, "1||This crypto coin is already on the list."},
             {{"coins", "add", "nothing"}, "1||Crypto coin not found, please choose from the list."},
             {{"coins", "add", "eth", "--ref=1e5"}, "2||\"1e5\" is no price"},
             {{"coins", "add", "\x1b (a)"}, "0||"},
             {{"coins", "list"}, "0|ETH (ethereum)  Ref: 3000.00\n\uFFFD (a)\n|"},
             {{"coins", "remove", "a"}, "0||"},
             {{"coins", "remove", "a"}, "1||This crypto coin is not on the list."},
             {{"coins", "add", "x (1)"}, "0||"},
             {{"coins", "add", "x (2)"}, "0||"},
             {{"coins", "add", "x (3)"}, "0||"},
             {{"coins", "add", "x (4)"}, "0||"},
             {{"coins", "add", "x (5)"}, "1||You have reached the limit of 5 coins."},
             {{"source", "use", "gate"}, "0||"},
             {{"source", "use", "nobody"}, "1||There is no data source \"nobody\"."},
             {{"display", "set", "floatOffset", "25"}, "0||"},
             {{"display", "set", "floatOffset", "101"}, "2||floatOffset is a whole number from 10 to 100"},
             {{"display", "set", "displayMode", "0.5"}, "2||displayMode is a whole number from 0 to 1"},
             {{"display", "set", "showGasFee", "on"}, "0||"},
             {{"display", "set", "showGasFee", "perhaps"}, "2||showGasFee is true or false"},
             {{"display", "set", "launchAtLogin", "false"}, "0||"},
             {{"display", "set", "launchAtLogin", "true"}, "0||"},
             {{"display", "list", "--format", "json"},
              "0|{\"displayMode\":0,\"floatTransparent\":false,\"floatOffset\":25,\"showChange24h\":false,"
              "\"showHighLow24h\":false,\"showSparkline\":false,\"showGasFee\":true,\"gasSource\":0,"
              "\"launchAtLogin\":true}\n|"},
             {{"coins"}, "2||\"coins\" wants one of these after it: list, search, add, remove"},
             {{"source", "buy"}, "2||there is no command \"source buy\"; there are list, use, key"},
             {{"coins", "list", "more"}, "2||\"coins list\" takes no word after it"},
             {{"coins", "add"}, "2||\"coins add\" wants one word after it"},
             {{"coins", "list", "--format", "xml"}, "2||there is no format \"xml\"; there are text and json"},
             {{"coins", "search", "--format=json", "--", "--e"}, "0|[]\n|"},
             {{"coins", "add", "eth", "--format", "json"}, "2||\"coins add\" does not take \"--format\""},
         }) {
        EXPECT_EQ(run(words), expected) << words.back();
    }
    EXPECT_EQ(machine.preferences.string("selectedSourceID"), "gate");
    EXPECT_THAT(run({"source", "list"}), testing::HasSubstr("  binance  Binance\n"));
    EXPECT_THAT(output.text, testing::HasSubstr("* gate  Gate\n"));
    machine.preferences.isWritable = false;
    const std::string refusal = "1||The preferences could not be written, so the change is not kept.";
    EXPECT_EQ(run({"coins", "remove", "1"}), refusal);
    EXPECT_EQ(run({"source", "use", "binance"}), refusal);
    EXPECT_EQ(run({"display", "set", "floatOffset", "50"}), refusal);
}

TEST_F(SettingsCommandTest, AKeyComesFromTheInputAndIsKeptForItsSourceAlone) {
    const auto kept = [this] { return machine.secrets.find("apiKey_gate", "GlintarUser").bytes; };
    typed = "secret";
    EXPECT_EQ(run({"source", "key", "nobody"}), "1||There is no data source \"nobody\".");
    EXPECT_EQ(run({"source", "key", "gate"}), "0||");
    EXPECT_EQ(kept(), "secret");
    EXPECT_EQ(machine.preferences.string("selectedSourceID"), std::nullopt);
    typed.reset();
    EXPECT_EQ(run({"source", "key", "gate"}), "1||") << "interrupted";
    EXPECT_EQ(kept(), "secret");
    typed = "";
    EXPECT_EQ(run({"source", "key", "gate"}), "0||");
    EXPECT_EQ(kept(), "");
    machine.secrets.failure = platform::SecretStatus::Locked;
    typed = "x";
    EXPECT_EQ(run({"source", "key", "gate"}), "1||The key ring is locked, so this key is not kept.");
    typed = "";
    EXPECT_EQ(run({"source", "key", "gate"}), "1||The key ring is locked, so the stored key is not removed.");
    machine.secrets.failure = platform::SecretStatus::Pending;
    EXPECT_EQ(run({"source", "key", "gate"}, 29s), "-1||Waiting for the key ring...");
    EXPECT_EQ(run({"source", "key", "gate"}, 30s), "1||Waiting for the key ring...The key ring did not answer.");
}

}  // namespace
}  // namespace glintar::line
