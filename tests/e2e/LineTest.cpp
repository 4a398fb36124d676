// `glintar line` against a market on loopback: the real program, its real network and its real files.

#include "e2e/ProgramTest.h"
#include "json/Json.h"
#include "platform/secret/PrivateBus.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace glintar::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class LineTest : public ProgramTest {};

TEST_F(LineTest, EachShapeOfServiceIsPricedAndAllAgree) {
    std::vector<double> prices;
    for (const std::string source : {"coingecko", "binance", "gate", "coingecko_simple"}) {
        SCOPED_TRACE(source);
        preferences("selectedSourceID=" + source + "\nshowGasFee=true\n");
        auto program = start({"line", "--once", "--format", "json"});
        EXPECT_EQ(program.wait(), 0) << program.errors();
        const auto answer = json::parseContainer(program.output());
        ASSERT_TRUE(answer) << program.output();
        const auto coins = answer->root().member("coins").value();
        ASSERT_EQ(coins.size(), 1U);
        EXPECT_EQ(answer->root().member("source")->string(), source);
        EXPECT_TRUE(answer->root().member("error")->isNull());
        EXPECT_GT(answer->root().member("gas")->member("fee")->number().value(), 0);
        EXPECT_GT(answer->root().member("gas")->member("transferCost")->number().value(), 0) << "priced by a phantom";
        prices.push_back(coins.at(0).member("price")->number().value());
    }
    const auto [low, high] = std::ranges::minmax(prices);
    EXPECT_LT(high / low, 1.05) << "one market, whoever tells of it";
}

TEST_F(LineTest, EachFaultEndsInItsTextAndLeavesTheProgramWell) {
    for (const auto& [kind, line] : {std::pair{"401", "⚠️ Error\n"},
                                     {"403", "⚠️ Error\n"},
                                     {"429", "⚠️ Limit 429\n"},
                                     {"500", "⚠️ Server Err\n"},
                                     {"503", "⚠️ Server Err\n"},
                                     {"hang", "⚠️ Net Error\n"},
                                     {"truncated", "⚠️ Net Error\n"},
                                     {"huge", "⚠️ Net Error\n"},
                                     {"html", "No Price Data\n"},
                                     {"wrong", "No Price Data\n"},
                                     {"deep", "No Price Data\n"},
                                     {"badutf8", "No Price Data\n"}}) {
        fault(kind);
        for (const auto* source : {"coingecko", "gate"}) {
            preferences(fmt::format("selectedSourceID={}\nshowGasFee=true\n", source));
            auto program = start({"line", "--once"});
            EXPECT_EQ(program.wait(), 1) << kind << program.errors();
            EXPECT_EQ(program.output(), line) << kind;
        }
    }
}

TEST_F(LineTest, WithoutANetworkItSaysSo) {
    preferences("");
    std::ofstream(dataFolder() / "remote_api_endpoints.json")
        << R"({"sources":[{"id":"coingecko","name":"C","supports_batch":true,"url_template":"http://127.0.0.1:9/{ID}",)"
        << R"("response_type":"array","id_mapping_path":"id","price_path":"p"}]})";
    auto program = start({"line", "--once", "--format=json"});
    EXPECT_EQ(program.wait(), 1);
    EXPECT_THAT(program.output(), HasSubstr(R"("error":"Network Error")"));
    EXPECT_THAT(program.output(), HasSubstr(R"("text":"⚠️ Net Error","coins":[],"gas":null)"));
}

TEST_F(LineTest, APipeGetsLinesOfPlainText) {
    auto program = start({"line"});
    ASSERT_TRUE(program.waitForOutput("\n")) << program.errors();
    EXPECT_THAT(program.output(), StartsWith("BTC "));
    EXPECT_THAT(program.output(), HasSubstr(" | ETH "));
    EXPECT_THAT(program.output(), HasSubstr(" | ⛽ "));
    EXPECT_THAT(program.output(), Not(HasSubstr("\x1b")));
}

TEST_F(LineTest, ATerminalShowsTheLineInPlaceAndTheShellFindsAFreshOne) {
    auto program = start({"line"}, {}, Program::Output::Terminal);
    ASSERT_TRUE(program.waitForOutput("BTC ")) << program.output();
    ASSERT_TRUE(program.waitForOutput("58s ")) << program.output();
    EXPECT_THAT(program.output(), HasSubstr("\r\x1b[2K"));
    EXPECT_THAT(program.output(), Not(HasSubstr("\n")));
    program.signal(SIGINT);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_THAT(program.output(), EndsWith("\n"));
}

TEST_F(LineTest, SettingsChangedMeanwhileTakeEffectWithoutARestart) {
    preferences("");
    auto program = start({"line"});
    ASSERT_TRUE(program.waitForOutput("BTC "));
    std::filesystem::rename(preferencesFile(), session->configHome() / "old");
    preferences(
        R"(savedCoins="[{\"id\":\"6F9619FF-8B86-4011-B42D-00C04FC964FF\",\"displayName\":\"doge\",\"apiId\":\"dogecoin\"}]")"
        "\n");
    EXPECT_TRUE(program.waitForOutput("DOGE ")) << program.output() << program.errors();
}

TEST_F(LineTest, CoinsThatCannotBeReadAreLeftAloneAndBitcoinIsShown) {
    preferences("savedCoins=\"@ByteArray([{\\\"id\\\":\\\"1\\\",])\"\n");
    const auto before = std::filesystem::last_write_time(preferencesFile());
    auto program = start({"line", "--once"});
    EXPECT_EQ(program.wait(), 0);
    EXPECT_THAT(program.output(), StartsWith("BTC "));
    EXPECT_THAT(program.errors(), HasSubstr("savedCoins cannot be read, Bitcoin is shown instead: "));
    EXPECT_EQ(std::filesystem::last_write_time(preferencesFile()), before);
}

TEST_F(LineTest, FilesWhereFoldersShouldBeAreSurvived) {
    std::filesystem::remove_all(session->dataHome());
    std::ofstream(session->dataHome()) << "a file where a folder should be";
    std::filesystem::remove_all(session->configHome());
    std::filesystem::create_directory(session->configHome());
    std::ofstream(session->configHome() / "glintar") << "another";
    preferences("");
    auto homeless = start({"line", "--once"});
    EXPECT_EQ(homeless.wait(), 1);
    EXPECT_EQ(homeless.output(), "⚠️ Net Error\n") << "it asks the shipped services for the default list";
}

TEST_F(LineTest, WordsItDoesNotKnowAreRefusedAndItsOwnExplained) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"lien"}, {"line", "--format", "xml"}, {"--once"}}) {
        auto program = start(arguments);
        EXPECT_EQ(program.wait(), 2);
        EXPECT_EQ(program.output(), "");
        EXPECT_THAT(program.errors(), EndsWith("\nTry \"glintar --help\".\n"));
    }
    auto help = start({"--help"});
    EXPECT_EQ(help.wait(), 0);
    EXPECT_THAT(help.output(), StartsWith("Usage: glintar"));
    auto version = start({"--version"});
    EXPECT_EQ(version.wait(), 0);
    EXPECT_THAT(version.output(), StartsWith("glintar "));
    auto server = start({"line"}, {{"GLINTAR_CONFIG_SERVER", "http://config.example"}});
    EXPECT_EQ(server.wait(), 2);
    EXPECT_THAT(server.errors(), HasSubstr("plain http is for loopback addresses only"));
}

TEST_F(LineTest, WithoutADisplayOrItsDesktopHalfItSaysSoAndShowsTheLine) {
    // Alone in a folder, with what it cannot do without.
    const TemporaryFolder alone;
    std::filesystem::copy_file(GLINTAR_PROGRAM, alone.path() / "glintar");
    std::filesystem::create_directory_symlink(std::filesystem::path(GLINTAR_BUILD) / "resources",
                                              alone.path() / "resources");
    for (const auto& [variable, reason] :
         {std::pair{"XDG_SESSION_ID", "no display"}, std::pair{"DISPLAY", "glintar-desktop is not installed"}}) {
        auto where = environment();
        where[variable] = ":77";
        Program program({alone.path() / "glintar"}, where);
        ASSERT_TRUE(program.waitForOutput("BTC ")) << program.errors();
        program.signal(SIGTERM);
        EXPECT_EQ(program.wait(), 0);
        EXPECT_THAT(program.errors(), StartsWith(fmt::format("glintar: {}", reason)));
    }
}

TEST_F(LineTest, OnlyTheDemonstrationLeavesTheUsersKeyRingAlone) {
    // A bus that never answers, and notices who comes.
    const auto path = session->cacheHome() / "bus";
    const int bus = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_un place{.sun_family = AF_UNIX, .sun_path = {}};
    path.string().copy(place.sun_path, sizeof place.sun_path - 1);
    ASSERT_EQ(::bind(bus, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    ASSERT_EQ(::listen(bus, 8), 0);
    for (const bool isDemo : {true, false}) {
        auto program = start({"line", isDemo ? "--demo" : "--format=text", "--once"},
                             {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path.string()}});
        EXPECT_EQ(program.wait(), 0) << program.errors();
        const int caller = ::accept(bus, nullptr, nullptr);
        EXPECT_EQ(caller < 0, isDemo) << "without the demonstration it asks";
        ::close(caller);
    }
    ::close(bus);
}

TEST_F(LineTest, TheKeyOfTheUsersKeyRingGoesToItsService) {
    platform::PrivateBus bus;
    bus.startKeyRing(platform::PrivateBus::Ring::Open);
    bus.elsewhere({"write", "apiKey_coingecko", "GlintarUser", "CG-e2e"});
    auto program = start({"line", "--once"}, {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}});
    EXPECT_EQ(program.wait(), 0) << program.errors();
    EXPECT_THAT(log(), HasSubstr(" CG-e2e"));
}

TEST_F(LineTest, AKeyThatIsTypedIsNotShown) {
    Program program({"sh", "-c", fmt::format("exec {} source key coingecko </dev/tty", GLINTAR_PROGRAM)}, environment(),
                    Program::Output::Terminal);
    ASSERT_TRUE(program.waitForErrors("API key"));
    ASSERT_TRUE(eventually([&] { return catches(program, SIGQUIT); }));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // the terminal is silent by then
    program.type("CG-typed\n");
    EXPECT_EQ(program.wait(), 1) << "there is no key ring";
    EXPECT_THAT(program.output() + program.errors(), Not(HasSubstr("CG-typed")));
}

TEST_F(LineTest, WhatIsInstalledRunsFromWhereItWasPut) {
    const TemporaryFolder prefix;
    Program install({"cmake", "--install", GLINTAR_BUILD, "--prefix", prefix.path()}, environment());
    ASSERT_EQ(install.wait(), 0) << install.errors();
    Program program({prefix.path() / "bin" / "glintar", "line", "--once", "--demo"}, environment());
    EXPECT_EQ(program.wait(), 0) << program.errors();
    EXPECT_THAT(program.output(), StartsWith("[simulated] BTC "));
    EXPECT_TRUE(std::ranges::any_of(std::filesystem::recursive_directory_iterator(prefix.path()), [](const auto& file) {
        return file.path().filename() == "coingecko_coins_list.json";
    }));
}

}  // namespace
}  // namespace glintar::test
