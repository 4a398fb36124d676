#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::demo {

/// One minute of the simulated market. Step 0 is the start; a week of history lies before it.
using Step = std::uint32_t;

/// What the market knows of a coin at one moment.
struct CoinState {
    std::string id;      ///< as CoinGecko calls it
    std::string symbol;  ///< in upper case
    std::string name;
    double price = 0;
    double open = 0;  ///< 24 hours ago
    double high = 0;  ///< of the last 24 hours, this moment included
    double low = 0;
    std::vector<double> week;  ///< 168 prices, one for each full hour; the newest is `price`

    [[nodiscard]] double changePercent() const { return (price - open) / open * 100; }
};

struct NetworkFees {
    double bitcoin = 0;   ///< sat/vB
    double ethereum = 0;  ///< Gwei
};

/// A market whose prices walk at random, each coin by itself, as its seed says: the same seed gives the same prices at
/// the same steps, in whatever order they are asked for. Prices never have more than eight decimals. Any thread.
class Market {
public:
    explicit Market(std::uint64_t seed) : seed_(seed) {}

    /// Every coin exists: a name that is not well known takes its price from its letters (ASCII case apart), and is
    /// then the same coin as id and as symbol.
    [[nodiscard]] CoinState byId(std::string_view id, Step step) const;
    [[nodiscard]] CoinState bySymbol(std::string_view symbol, Step step) const;

    /// The same coin where a venue trades it: prices of venues lie within a third of a percent of each other, and move
    /// with time.
    [[nodiscard]] CoinState at(std::string_view venue, CoinState coin, Step step) const;

    [[nodiscard]] NetworkFees fees(Step step) const;

    /// The ids of the well-known coins, the largest first.
    [[nodiscard]] static std::vector<std::string> wellKnownIds();

private:
    std::uint64_t seed_;
};

}  // namespace glintar::demo
