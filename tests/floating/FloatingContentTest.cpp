#include "config/Settings.h"
#include "floating/FloatingContent.h"
#include "menubar/PillColors.h"
#include "platform/virtual/VirtualStores.h"
#include "support/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace glintar::floating {
namespace {

using platform::Appearance;
using platform::Color;
using platform::Font;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// In both appearances.
class FloatingContentTest : public testing::TestWithParam<Appearance> {
protected:
    FloatingContentTest() {
        for (const auto key :
             {config::kShowChange, config::kShowHighLow, config::kShowSparkline, config::kShowGasFee}) {
            preferences.setBoolean(key, true);
        }
        state.currentCoins = {test::coin("Bitcoin", "bitcoin", 60000)};
        state.marketData["bitcoin"] = quote;
    }

    FloatingContent compose() const { return composeContent(state, preferences, GetParam()); }

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

    /// Its words, font and colour.
    static std::string styled(const StyledText& text) {
        static constexpr std::string_view kWeights[] = {"regular", "medium", "semibold", "bold", "black"};
        const auto palette = paletteOf(GetParam());
        std::string_view color = "?";
        for (const auto& [known, name] :
             {std::pair{palette.primary, "primary"}, std::pair{palette.dimmed, "dimmed"},
              std::pair{palette.coinName, "name"}, std::pair{palette.green, "green"}, std::pair{palette.red, "red"}}) {
            color = text.color == known ? name : color;
        }
        return fmt::format("{}: {} {} {}{}", text.text, text.font.size, kWeights[std::to_underlying(text.font.weight)],
                           text.font.digits == Font::Digits::Monospaced ? "mono " : "", color);
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

    platform::VirtualPreferences preferences;
    market::UnifiedMarketData quote{.price = 64250.5,
                                    .change24h = 2.54,
                                    .high24h = 71234.5,
                                    .low24h = 0.69,
                                    .sparkline = std::vector{1.0, 2.0, 3.0}};
    FloatingState state;
};

using Lines = std::vector<std::vector<std::string>>;

TEST_P(FloatingContentTest, ARowSaysWhatTheQuoteHoldsAndTheUserWants) {
    EXPECT_EQ(row(), (Lines{{"BITC"}, {"64250.50", "Ref: 60000.00"}, {"+2.5%", "71234.50/0.6900"}, {"~3"}}));

    preferences.setBoolean(config::kShowChange, false);
    EXPECT_EQ(row(), (Lines{{"BITC"}, {"64250.50", "Ref: 60000.00"}, {"71234.50/0.6900"}, {"~3"}}));
    preferences.setBoolean(config::kShowHighLow, false);
    EXPECT_EQ(row(), (Lines{{"BITC"}, {"64250.50", "Ref: 60000.00"}, {"~3"}}));
    preferences.setBoolean(config::kShowSparkline, false);
    EXPECT_EQ(row(), (Lines{{"BITC"}, {"64250.50", "Ref: 60000.00"}}));
}

TEST_P(FloatingContentTest, EveryTextHasItsFontAndColour) {
    std::vector<std::string> texts;
    const auto add = [&texts](const std::vector<StyledText>& lines) {
        std::ranges::transform(lines, std::back_inserter(texts), &styled);
    };
    const auto addFee = [&](std::int64_t network) {
        preferences.setInteger(config::kGasSource, network);
        for (const auto& item : compose().fee) {
            if (const auto* pieces = std::get_if<std::vector<StyledText>>(&item)) {
                add(*pieces);
            } else {
                const auto& symbol = std::get<StyledSymbol>(item);
                texts.push_back(styled({symbol.name, {.size = symbol.fontSize}, symbol.color}));
            }
        }
    };
    state.currentGasPrice = 10;
    state.marketData["ETH"].price = 2700;
    const auto content = compose();
    add({content.sourceName});
    for (const auto& cell : content.rows.at(0)) {
        add(cell.lines);
    }
    addFee(0);
    addFee(1);
    state.currentCoins.clear();
    add({compose().loading.value()});
    EXPECT_THAT(texts, testing::ElementsAreArray(
                           {"Coingecko: 11 bold green", "BITC: 12 black mono name", "64250.50: 12 bold mono primary",
                            "Ref: 60000.00: 9 regular mono dimmed", "+2.5%: 10 semibold mono green",
                            "71234.50/0.6900: 8 regular mono dimmed",                                       //
                            "ETH: 11 bold green", "fuelpump.fill: 12 regular green", "10: 11 bold green",   //
                            "Gwei: 10 regular primary", "($0.567): 10 regular green",                       //
                            "BTC: 10 bold green", "fuelpump.fill: 11 regular green", " 10: 12 bold green",  //
                            " sat/vB: 11 bold primary", "Loading...: 10 regular primary"}));
}

TEST_P(FloatingContentTest, ColoursGoWithTheAppearance) {
    const auto palette = paletteOf(GetParam());
    const bool isDark = GetParam() == Appearance::Dark;
    const auto either = [&](double level, double alpha, double lightLevel, double lightAlpha) {
        return isDark ? Color::white(level, alpha) : Color::white(lightLevel, lightAlpha);
    };
    EXPECT_EQ(palette.primary, either(1, 1, 0, 1));
    EXPECT_EQ(palette.dimmed, either(1, 0.6, 0, 0.6));
    EXPECT_EQ(palette.plate, either(0, 0.85, 1, 1));
    EXPECT_EQ(palette.divider, either(1, 0.2, 0, 0.1));
    EXPECT_EQ(palette.ringTrack, either(1, 0.3, 0, 0.3));
    EXPECT_EQ(palette.shadow, either(0, 0.6, 0, 0.2));
    using menubar::SystemColor;
    const auto system = [](SystemColor color) { return menubar::systemColor(color, GetParam()); };
    EXPECT_EQ(palette.coinName, isDark ? (Color{1, 214 / 255.0, 10 / 255.0}) : system(SystemColor::Blue));
    EXPECT_EQ(palette.green, system(SystemColor::Green));
    EXPECT_EQ(palette.orange, system(SystemColor::Orange));
    EXPECT_EQ(palette.red, system(SystemColor::Red));
}

TEST_P(FloatingContentTest, WhatAQuoteLacksIsLeftOutAndItsColumnStays) {
    quote = {.price = 0.5, .high24h = 2};
    state.currentCoins = {test::coin("eth", "bitcoin", 0)};
    EXPECT_EQ(row(), (Lines{{"ETH"}, {"0.5000"}, {}}));
    state.currentCoins = {test::coin("größe", "bitcoin", -1)};
    quote.price = 1;
    EXPECT_EQ(row(), (Lines{{"GRÖSS"}, {"1.00"}, {}}));
    state.currentCoins = {test::coin("A", "bitcoin", 0.25)};
    EXPECT_EQ(row()[1].at(1), "Ref: 0.2500");
}

TEST_P(FloatingContentTest, ANameStaysOneShortLine) {
    state.currentCoins = {test::coin("a\nb\u2028c", "bitcoin")};
    EXPECT_EQ(row()[0], std::vector<std::string>{"A\uFFFDB\uFFFD"});
    std::string marks = "e";
    for (int i = 0; i < 10'000; ++i) {
        marks += "\u0301";
    }
    state.currentCoins = {test::coin(marks, "bitcoin")};
    EXPECT_LE(row()[0].at(0).size(), 1536U);
}

TEST_P(FloatingContentTest, ChangesAreGreenFromZeroUpwards) {
    const auto palette = paletteOf(GetParam());
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

TEST_P(FloatingContentTest, OnlyCoinsWithAQuoteHaveARow) {
    state.currentCoins.insert(state.currentCoins.begin(), test::coin("X", "nobody"));
    EXPECT_EQ(compose().rows.size(), 1U);
    EXPECT_FALSE(compose().loading);
    state.marketData.clear();
    EXPECT_EQ(compose().rows.size(), 0U);
    EXPECT_FALSE(compose().loading);
    state.currentCoins.clear();
    EXPECT_EQ(compose().loading->text, "Loading...");
}

TEST_P(FloatingContentTest, FeesReadByNetworkAndSize) {
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

    preferences.setInteger(config::kGasSource, 1);
    EXPECT_EQ(fee(12.7), "BTC|<fuelpump.fill>| 12 sat/vB");
    EXPECT_EQ(fee(0x1p63), "BTC|<fuelpump.fill>| — sat/vB");
    EXPECT_EQ(fee(-0x1p63), "BTC|<fuelpump.fill>| -9223372036854775808 sat/vB");

    preferences.setBoolean(config::kShowGasFee, false);
    EXPECT_EQ(fee(12), "");
}

TEST_P(FloatingContentTest, FeesWarnByColour) {
    const auto palette = paletteOf(GetParam());
    for (const auto& [price, color] : {std::pair{19.99, palette.green}, std::pair{20.0, palette.orange},
                                       std::pair{49.99, palette.orange}, std::pair{50.0, palette.red}}) {
        state.currentGasPrice = price;
        const auto items = compose().fee;
        EXPECT_EQ(std::get<std::vector<StyledText>>(items.at(0)).at(0).color, color) << price;
        EXPECT_EQ(std::get<StyledSymbol>(items.at(1)).color, color) << price;
        EXPECT_EQ(std::get<std::vector<StyledText>>(items.at(3)).at(0).color, palette.primary) << price;
    }
}

TEST_P(FloatingContentTest, TheSourceIsNamedByItsIdentifier) {
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

INSTANTIATE_TEST_SUITE_P(Appearances, FloatingContentTest, testing::Values(Appearance::Light, Appearance::Dark),
                         [](const auto& appearance) {
                             return appearance.param == Appearance::Dark ? "Dark" : "Light";
                         });

}  // namespace
}  // namespace glintar::floating
