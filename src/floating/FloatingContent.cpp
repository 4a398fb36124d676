#include "floating/FloatingContent.h"

#include "config/Settings.h"
#include "market/GasNetwork.h"
#include "presenter/StatusLine.h"
#include "presenter/StatusTexts.h"
#include "presenter/SystemColors.h"
#include "text/Number.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace glintar::floating {

namespace {

using platform::Appearance;
using platform::Color;
using platform::Font;
using Weight = Font::Weight;

constexpr Color kYellow{1, 214 / 255.0, 10 / 255.0};

Font plain(double size, Weight weight = Weight::Regular) {
    return {.size = size, .weight = weight};
}

Font monospaced(double size, Weight weight = Weight::Regular) {
    return {.size = size, .weight = weight, .digits = Font::Digits::Monospaced};
}

/// "coingecko" becomes "Coingecko", each word by itself. Short enough for a panel, whatever it is.
std::string capitalized(std::string_view id) {
    constexpr std::size_t kLongest = 60;
    const std::string fitting = text::fitColumns(text::oneLine(id), kLongest);
    std::string result;
    std::string_view rest = fitting;
    while (!rest.empty()) {
        const auto word = rest.substr(0, rest.find(' '));
        const auto initial = text::firstCharacters(word, 1);
        result += text::upper(initial) + text::lower(word.substr(initial.size()));
        rest.remove_prefix(word.size());
        if (!rest.empty()) {
            result += ' ';
            rest.remove_prefix(1);
        }
    }
    return result;
}

/// However many marks the user heaps upon one character.
std::string shortName(std::string_view displayName) {
    constexpr std::size_t kMostBytes = 512;
    return text::oneLine(text::upper(text::firstCharacters(displayName.substr(0, kMostBytes), 4)));
}

/// Whether the fee fits a whole number of 64 bits; what does not is nobody's fee.
bool isCountable(double fee) {
    constexpr double kLimit = 0x1p63;
    return fee >= -kLimit && fee < kLimit;  // false for what is no number
}

std::string wholeText(double fee) {
    return isCountable(fee) ? fmt::format("{}", static_cast<std::int64_t>(fee)) : "—";
}

std::optional<std::string> transferCostText(double fee, const market::MarketDataMap& quotes) {
    auto quote = quotes.find("ethereum");
    if (quote == quotes.end()) {
        quote = quotes.find("ETH");
    }
    if (quote == quotes.end() || !isCountable(fee)) {
        return std::nullopt;
    }
    const double cost = fee * 21'000 * quote->second.price / 1'000'000'000;
    return std::isfinite(cost) ? std::optional(fmt::format("(${})", text::fixed(cost, 3))) : std::nullopt;
}

std::vector<HeaderItem> feeItems(double fee, market::GasNetwork network, const market::MarketDataMap& quotes,
                                 const Palette& palette) {
    const std::array levels{palette.green, palette.orange, palette.red};
    const Color level = levels.at(std::to_underlying(presenter::gasLevel(fee)));
    const auto single = [](std::string words, const Font& font, const Color& color) {
        return std::vector{StyledText{std::move(words), font, color}};
    };
    std::vector<HeaderItem> items;
    if (network == market::GasNetwork::Bitcoin) {
        items.emplace_back(single("BTC", plain(10, Weight::Bold), level));
        items.emplace_back(StyledSymbol{"fuelpump.fill", 11, level});
        items.emplace_back(std::vector{StyledText{fmt::format(" {}", wholeText(fee)), plain(12, Weight::Bold), level},
                                       StyledText{" sat/vB", plain(11, Weight::Bold), palette.primary}});
        return items;
    }
    items.emplace_back(single("ETH", plain(11, Weight::Bold), level));
    items.emplace_back(StyledSymbol{"fuelpump.fill", 12, level});
    items.emplace_back(
        single(fee < 10 && isCountable(fee) ? text::fixed(fee, 2) : wholeText(fee), plain(11, Weight::Bold), level));
    items.emplace_back(single("Gwei", plain(10), palette.primary));
    if (auto cost = transferCostText(fee, quotes)) {
        items.emplace_back(single(std::move(*cost), plain(10), level));
    }
    return items;
}

Cell priceCell(const config::Coin& coin, double price, const Palette& palette) {
    Cell cell{.lines = {{presenter::panelPriceText(price), monospaced(12, Weight::Bold), palette.primary}}};
    if (coin.referencePrice && *coin.referencePrice > 0) {
        cell.lines.push_back(
            {"Ref: " + presenter::panelPriceText(*coin.referencePrice), monospaced(9), palette.dimmed});
    }
    return cell;
}

Cell changeCell(const market::UnifiedMarketData& quote, const config::Settings& settings, const Palette& palette) {
    Cell cell;
    if (settings.showChange24h && quote.change24h) {
        const double change = *quote.change24h + 0.0;  // makes the negative zero a plain one
        cell.lines.push_back({fmt::format("{}{}%", change >= 0 ? "+" : "", text::fixed(change, 1)),
                              monospaced(10, Weight::Semibold), change >= 0 ? palette.green : palette.red});
    }
    if (settings.showHighLow24h && quote.high24h && quote.low24h) {
        cell.lines.push_back(
            {presenter::panelPriceText(*quote.high24h) + "/" + presenter::panelPriceText(*quote.low24h), monospaced(8),
             palette.dimmed});
    }
    return cell;
}

std::vector<Cell> rowOf(const config::Coin& coin, const market::UnifiedMarketData& quote,
                        const config::Settings& settings, const Palette& palette) {
    std::vector<Cell> cells;
    cells.push_back({.alignment = Cell::Alignment::Center,
                     .lines = {{shortName(coin.displayName), monospaced(12, Weight::Black), palette.coinName}}});
    cells.push_back(priceCell(coin, quote.price, palette));
    if (settings.showChange24h || settings.showHighLow24h) {
        cells.push_back(changeCell(quote, settings, palette));
    }
    if (settings.showSparkline && quote.sparkline) {
        const bool isDown = quote.change24h && *quote.change24h < 0;
        cells.push_back({.alignment = Cell::Alignment::Center,
                         .sparkline = SparklineView{*quote.sparkline, isDown ? palette.red : palette.green}});
    }
    return cells;
}

}  // namespace

Palette paletteOf(Appearance appearance) {
    using presenter::SystemColor;
    const bool isDark = appearance == Appearance::Dark;
    const auto ink = [isDark](double opacity) { return Color::white(isDark ? 1 : 0, opacity); };
    const auto system = [appearance](SystemColor color) { return presenter::systemColor(color, appearance); };
    return {.primary = ink(1),
            .dimmed = ink(0.6),
            .plate = isDark ? Color::white(0, 0.85) : Color::white(1),
            .divider = ink(isDark ? 0.2 : 0.1),
            .ringTrack = ink(0.3),
            .shadow = Color::white(0, isDark ? 0.6 : 0.2),
            .coinName = isDark ? kYellow : system(SystemColor::Blue),
            .green = system(SystemColor::Green),
            .orange = system(SystemColor::Orange),
            .red = system(SystemColor::Red)};
}

Palette Palette::faded(bool isOld) const {
    Palette palette = *this;
    for (auto* const color :
         {&palette.primary, &palette.dimmed, &palette.coinName, &palette.green, &palette.orange, &palette.red}) {
        color->alpha *= isOld ? presenter::kOldOpacity : 1;
    }
    return palette;
}

FloatingContent composeContent(const FloatingState& state, Appearance appearance) {
    const config::Settings& settings = state.settings;
    const Palette palette = paletteOf(appearance);
    FloatingContent content{
        .palette = palette,
        .isTransparent = state.isTransparent,
        .sourceID = state.sourceID,
        .sourceName = {capitalized(state.sourceID), plain(11, Weight::Bold), palette.green},
    };
    if (state.currentGasPrice && settings.showGasFee) {
        const auto network = market::gasNetworkOf(settings.gasSource);
        content.fee = feeItems(state.currentGasPrice->price, network, state.marketData,
                               palette.faded(state.currentGasPrice->arrival.isOld));
    }
    if (state.currentCoins.empty()) {
        content.loading = {"Loading...", plain(10), palette.primary};
    }
    for (const auto& coin : state.currentCoins) {
        if (const auto quote = state.marketData.find(coin.apiId); quote != state.marketData.end()) {
            content.rows.push_back(rowOf(coin, quote->second, settings, palette.faded(quote->second.arrival.isOld)));
        }
    }
    return content;
}

}  // namespace glintar::floating
