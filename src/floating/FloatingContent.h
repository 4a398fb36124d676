#pragma once

#include "config/Coin.h"
#include "config/Settings.h"
#include "floating/SparklineView.h"
#include "market/MarketData.h"
#include "platform/Graphics.h"
#include "platform/RunLoop.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace glintar::floating {

/// What the panel is told.
struct FloatingState {
    std::vector<config::Coin> currentCoins;  ///< in the user's order
    market::MarketDataMap marketData;
    std::optional<market::NetworkFee> currentGasPrice;
    platform::Instant nextFetchTime;
    std::string sourceID = "coingecko";
    bool isTransparent = false;  ///< without its plate
    config::Settings settings;   ///< which parts are shown
};

struct Palette {
    platform::Color primary, dimmed, plate, divider, ringTrack, shadow, coinName, green, orange, red;
    bool operator==(const Palette&) const = default;

    /// The same, at 55 % opacity what belongs to an old price.
    [[nodiscard]] Palette faded(bool isOld) const;
};
[[nodiscard]] Palette paletteOf(platform::Appearance appearance);

struct StyledText {
    std::string text;
    platform::Font font;
    platform::Color color;
    bool operator==(const StyledText&) const = default;
};

struct StyledSymbol {
    std::string name;
    double fontSize = 0;
    platform::Color color;
    bool operator==(const StyledSymbol&) const = default;
};

/// A symbol, or the pieces of one text.
using HeaderItem = std::variant<StyledSymbol, std::vector<StyledText>>;

/// Lines above each other, or a sparkline.
struct Cell {
    enum class Alignment { Center, Trailing };
    Alignment alignment = Alignment::Trailing;
    std::vector<StyledText> lines;
    std::optional<SparklineView> sparkline;
    bool operator==(const Cell&) const = default;
};

/// What the panel says, in which colours and fonts, before it is laid out. The countdown is apart from it.
struct FloatingContent {
    Palette palette;
    bool isTransparent = false;
    std::string sourceID;
    StyledText sourceName;
    std::vector<HeaderItem> fee;          ///< empty when it is not shown
    std::optional<StyledText> loading;    ///< in place of rows while there are no coins
    std::vector<std::vector<Cell>> rows;  ///< one for each coin that has a quote
    bool operator==(const FloatingContent&) const = default;
};

[[nodiscard]] FloatingContent composeContent(const FloatingState& state, platform::Appearance appearance);

}  // namespace glintar::floating
