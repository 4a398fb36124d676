#include "demo/MarketOptions.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace glintar::demo {
namespace {

std::expected<MarketOptions, std::string> parse(std::vector<std::string> words) {
    words.insert(words.begin(), "glintar-demo-market");
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    return parseMarketOptions(arguments);
}

TEST(MarketOptionsTest, ReadsWhatItUnderstandsAndRefusesTheRest) {
    const auto options = parse({"--port", "8080", "--seed", "9", "--step", "0.25", "--fault", "429:gate:2"});
    ASSERT_TRUE(options) << options.error();
    EXPECT_EQ(options->server.port, 8080);
    EXPECT_EQ(options->server.seed, 9);
    EXPECT_EQ(options->server.step, std::chrono::milliseconds{250});
    EXPECT_EQ(options->faults, std::vector<std::string>{"429:gate:2"});
    EXPECT_FALSE(parse({"--step", "per-request"})->server.step);

    const std::vector<std::vector<std::string>> wrong = {
        {"--port", "65536"}, {"--port", "-1"},       {"--port", "80x"},          {"--seed"},
        {"--step", "0"},     {"--fault", "418"},     {"--fault", "429:gate:no"}, {"--colour", "red"},
        {"--seed", "1.5"},   {"--remove-at-end", ""}};
    for (const auto& words : wrong) {
        EXPECT_FALSE(parse(words)) << testing::PrintToString(words);
    }
}

TEST(MarketOptionsTest, RemovesOnlyADirectoryMadeForADemonstration) {
    const test::TemporaryFolder folder;
    const auto& root = folder.path();
    std::filesystem::create_directory(root / "glintar-demo-abc");
    std::filesystem::create_directory(root / "precious");
    std::filesystem::create_directory_symlink(root / "precious", root / "glintar-demo-link");

    EXPECT_TRUE(parse({"--remove-at-end", root / "glintar-demo-abc"}));
    EXPECT_FALSE(parse({"--remove-at-end", root / "precious"}));
    EXPECT_FALSE(parse({"--remove-at-end", root / "glintar-demo-link"}));
    EXPECT_FALSE(parse({"--remove-at-end", root / "glintar-demo-abc/.."}));
    EXPECT_FALSE(parse({"--remove-at-end", root / "glintar-demo-missing"}));
}

}  // namespace
}  // namespace glintar::demo
