#include "floating/FloatingContent.h"
#include "support/Market.h"

#include <gtest/gtest.h>

#include <limits>

namespace glintar::floating {
namespace {

using platform::Appearance;
using platform::Color;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

class FloatingContentTest : public testing::Test {
protected:
    FloatingContentTest() {
        state.settings.showChange24h = true;
        state.settings.showHighLow24h = true;
        state.settings.showSparkline = true;
        state.settings.showGasFee = true;
        state.currentCoins = {test::coin("Bitcoin", "bitcoin", 60000)};
        state.marketData["bitcoin"] = quote;
    }

    FloatingContent compose() const { return composeContent(state, Appearance::Dark); }

    /// The row of one coin with this quote: its cells' lines, a sparkline as its number of prices.
    std::vector<std::vector<std::string>> row() {
        state.marketData["bitcoin"] = quote;
        std::vector<std::vector<std::string>> cells;
        const auto content = compose();
        for (const auto& cell : content.rows.at(0)) {
            auto& lines = cells.emplace_back();
            for (const auto& line : cell.lines) {
                lines.push_back(line.text);
            }
            if (cell.sparkline) {
                lines.push_back(fmt::format("~{}", cell.sparkline->prices.size()));
            }
        }
        return cells;
    }

    /// The fee group in one line, symbols in angle brackets.
    std::string fee(double price) {
        state.currentGasPrice = price;
        std::string all;
        for (const auto& item : compose().fee) {
            all += all.empty() ? "" : "|";
            if (const auto* symbol = std::get_if<StyledSymbol>(&item)) {
                all += "<" + symbol->name + ">";
            } else {
                for (const auto& piece : std::get<std::vector<StyledText>>(item)) {
                    all += piece.text;
                }
            }
        }
        return all;
    }

    market::UnifiedMarketData quote{.price = 64250.5,
                                    .change24h = 2.54,
                                    .high24h = 71234.5,
                                    .low24h = 0.69,
                                    .sparkline = std::vector{1.0, 2.0, 3.0}};
    FloatingState state;
};

using Lines = std::vector<std::vector<std::string>>;

TEST_F(FloatingContentTest, ARowSaysWhatTheQuoteHoldsAndTheUserWants) {
    EXPECT_EQ(row(), (Lines{{"BITC"}, {"64250.50", "Ref: 60000.00"}, {"+2.5%", "71234.50/0.6900"}, {"~3"}}));

    state.settings.showChange24h = false;
    EXPECT_EQ(row(), (Lines{{"BITC"}, {"64250.50", "Ref: 60000.00"}, {"71234.50/0.6900"}, {"~3"}}));
    state.settings.showHighLow24h = false;
    EXPECT_EQ(row(), (Lines{{"BITC"}, {"64250.50", "Ref: 60000.00"}, {"~3"}}));
    state.settings.showSparkline = false;
    EXPECT_EQ(row(), (Lines{{"BITC"}, {"64250.50", "Ref: 60000.00"}}));
}

TEST_F(FloatingContentTest, WhatAQuoteLacksIsLeftOutAndItsColumnStays) {
    quote = {.price = 0.5, .high24h = 2};
    state.currentCoins = {test::coin("eth", "bitcoin", 0)};
    EXPECT_EQ(row(), (Lines{{"ETH"}, {"0.5000"}, {}}));
    state.currentCoins = {test::coin("größe", "bitcoin", -1)};
    quote.price = 1;
    EXPECT_EQ(row(), (Lines{{"GRÖSS"}, {"1.00"}, {}}));
    state.currentCoins = {test::coin("A", "bitcoin", 0.25)};
    EXPECT_EQ(row()[1].at(1), "Ref: 0.2500");
}

TEST_F(FloatingContentTest, ANameStaysOneShortLine) {
    state.currentCoins = {test::coin("a\nb\u2028c", "bitcoin")};
    EXPECT_EQ(row()[0], std::vector<std::string>{"A\uFFFDB\uFFFD"});
    std::string marks = "e";
    for (int i = 0; i < 10'000; ++i) {
        marks += "\u0301";
    }
    state.currentCoins = {test::coin(marks, "bitcoin")};
    EXPECT_LE(row()[0].at(0).size(), 1536U);
}

TEST_F(FloatingContentTest, ChangesAreGreenFromZeroUpwards) {
    const auto palette = paletteOf(Appearance::Dark);
    struct Case {
        std::optional<double> change;
        std::string text;
        Color color;
    };
    for (const auto& [change, text, color] : {Case{0.0, "+0.0%", palette.green}, Case{-0.0, "+0.0%", palette.green},
                                              Case{-0.3, "-0.3%", palette.red}, Case{{}, "", palette.green}}) {
        quote.change24h = change;
        state.marketData["bitcoin"] = quote;
        const auto cells = compose().rows.at(0);
        if (change) {
            EXPECT_EQ(cells[2].lines[0].text, text);
            EXPECT_EQ(cells[2].lines[0].color, color) << text;
        }
        EXPECT_EQ(cells[3].sparkline->color, color) << text;
    }
}

TEST_F(FloatingContentTest, OnlyCoinsWithAQuoteHaveARow) {
    state.currentCoins.insert(state.currentCoins.begin(), test::coin("X", "nobody"));
    EXPECT_EQ(compose().rows.size(), 1U);
    EXPECT_FALSE(compose().loading);
    state.marketData.clear();
    EXPECT_EQ(compose().rows.size(), 0U);
    EXPECT_FALSE(compose().loading);
    state.currentCoins.clear();
    EXPECT_EQ(compose().loading->text, "Loading...");
    EXPECT_EQ(compose().loading->color, paletteOf(Appearance::Dark).primary);
}

TEST_F(FloatingContentTest, FeesReadByNetworkAndSize) {
    EXPECT_EQ(fee(9.5), "ETH|<fuelpump.fill>|9.50|Gwei");
    EXPECT_EQ(fee(10.7), "ETH|<fuelpump.fill>|10|Gwei");
    state.marketData["ETH"].price = 2700;
    EXPECT_EQ(fee(10), "ETH|<fuelpump.fill>|10|Gwei|($0.567)");
    state.marketData["ethereum"].price = 1350;  // goes first
    EXPECT_EQ(fee(10), "ETH|<fuelpump.fill>|10|Gwei|($0.283)");
    EXPECT_EQ(fee(kInfinity), "ETH|<fuelpump.fill>|—|Gwei");
    EXPECT_EQ(fee(-kInfinity), "ETH|<fuelpump.fill>|—|Gwei");
    EXPECT_EQ(fee(std::numeric_limits<double>::quiet_NaN()), "ETH|<fuelpump.fill>|—|Gwei");
    state.marketData["ethereum"].price = 1e308;
    EXPECT_EQ(fee(1e15), "ETH|<fuelpump.fill>|1000000000000000|Gwei") << "a cost beyond double is none";

    state.settings.gasSource = 1;
    EXPECT_EQ(fee(12.7), "BTC|<fuelpump.fill>| 12 sat/vB");
    EXPECT_EQ(fee(0x1p63), "BTC|<fuelpump.fill>| — sat/vB");
    EXPECT_EQ(fee(-0x1p63), "BTC|<fuelpump.fill>| -9223372036854775808 sat/vB");

    state.settings.showGasFee = false;
    EXPECT_EQ(fee(12), "");
}

TEST_F(FloatingContentTest, TheSourceIsNamedByItsIdentifier) {
    const std::pair<std::string, std::string> cases[] = {{"coingecko", "Coingecko"},
                                                         {"cex_io", "Cex_io"},
                                                         {"my OWN  source", "My Own  Source"},
                                                         {"éCU", "Écu"},
                                                         {"", ""},
                                                         {"a\nb", "A\uFFFDb"}};
    for (const auto& [id, name] : cases) {
        state.sourceID = id;
        EXPECT_EQ(compose().sourceName.text, name);
    }
    state.sourceID = std::string(100'000, 'x');
    EXPECT_LE(compose().sourceName.text.size(), 64U);
}

}  // namespace
}  // namespace glintar::floating
