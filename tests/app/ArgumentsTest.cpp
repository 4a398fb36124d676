#include "app/Arguments.h"
#include "app/Deployment.h"

#include <gtest/gtest.h>

#include <vector>

namespace glintar::app {
namespace {

struct ArgumentsCase {
    std::string name;
    std::vector<const char*> arguments;
    std::string expected;  ///< command, format, once, demo; or "refused"
};

class ArgumentsTest : public testing::TestWithParam<ArgumentsCase> {};

std::string describe(const std::expected<Arguments, std::string>& parsed) {
    if (!parsed) {
        return "refused";
    }
    static constexpr std::array kCommands{"desktop", "line", "settings", "help", "version"};
    std::string text = kCommands.at(static_cast<std::size_t>(parsed->command));
    text += parsed->format == Format::Json ? " json" : "";
    text += parsed->once ? " once" : "";
    text += parsed->demo ? " demo" : "";
    text += parsed->opensSettings ? " settings" : "";
    for (const auto word : parsed->words) {
        (text += ' ') += word;
    }
    return text;
}

TEST_P(ArgumentsTest, MeanWhatTheySay) {
    EXPECT_EQ(describe(parseArguments(GetParam().arguments)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, ArgumentsTest,
    testing::Values(
        ArgumentsCase{"Nothing", {}, "desktop"}, ArgumentsCase{"OptionsFirst", {"--once", "line"}, "line once"},
        ArgumentsCase{"Demo", {"--demo"}, "desktop demo"}, ArgumentsCase{"Line", {"line"}, "line"},
        ArgumentsCase{"DemoBeforeLine", {"--demo", "line"}, "line demo"},
        ArgumentsCase{"Everything", {"line", "--once", "--format", "json", "--demo"}, "line json once demo"},
        ArgumentsCase{"JoinedFormat", {"line", "--format=json"}, "line json"},
        ArgumentsCase{"LastFormatCounts", {"line", "--format=json", "--format", "text"}, "line"},
        ArgumentsCase{"Help", {"line", "--help"}, "help"}, ArgumentsCase{"Version", {"--version"}, "version"},
        ArgumentsCase{"Settings", {"--settings"}, "desktop settings"},
        ArgumentsCase{"SettingsOfALine", {"line", "--settings"}, "refused"},
        ArgumentsCase{"Coins", {"coins", "add", "--ref"}, "settings coins add --ref"},
        ArgumentsCase{"UnknownCommand", {"lien"}, "refused"},
        ArgumentsCase{"UnknownOption", {"line", "--twice"}, "refused"},
        ArgumentsCase{"OnceWithoutLine", {"--once"}, "refused"},
        ArgumentsCase{"TwoCommands", {"line", "line"}, "refused"},
        ArgumentsCase{"FormatMissing", {"line", "--format"}, "refused"},
        ArgumentsCase{"FormatUnknown", {"line", "--format", "xml"}, "refused"},
        ArgumentsCase{"FormatMisspelled", {"line", "--formatted"}, "refused"}, ArgumentsCase{"Empty", {""}, "refused"}),
    [](const auto& test) { return test.param.name; });

TEST(DeploymentTest, AConfigurationServerIsSecureOrThisMachine) {
    struct Row {
        const char* address;
        bool isAccepted;
    };
    for (const auto& [address, isAccepted] :
         {Row{"", true}, Row{"https://config.example/glintar", true}, Row{"https://config.example:8443", true},
          Row{"http://127.0.0.1:8080/x", true}, Row{"http://localhost:1", true}, Row{"http://[::1]:1/a", true},
          Row{"HTTPS://config.example", true}, Row{"http://config.example", false},
          Row{"http://localhost.example", false}, Row{"http://127.0.0.1.example", false},
          Row{"http://127.0.0.1@config.example", false}, Row{"https://config.example/", false},
          Row{"https://config.example?a=b", false}, Row{"ftp://config.example", false}, Row{"config.example", false},
          Row{"https://", false}, Row{"https://config example", false}}) {
        const auto server = app::configServer(address);
        EXPECT_EQ(server.has_value(), isAccepted) << address;
        EXPECT_EQ(server.value_or(""), isAccepted ? address : "");
    }
    const char* const builtIn = "https://built.in";
    EXPECT_EQ(app::configServer(std::nullopt, builtIn), builtIn);
    EXPECT_EQ(app::configServer("https://named.example", builtIn), "https://named.example");
    EXPECT_EQ(app::configServer("", builtIn), "") << "whoever wants none can say so";
}

}  // namespace
}  // namespace glintar::app
