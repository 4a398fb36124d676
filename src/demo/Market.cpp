#include "demo/Market.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace glintar::demo {

namespace {

struct Coin {
    std::string_view id;
    std::string_view symbol;  // in lower case
    std::string_view name;
    double start;
    double liveliness = 1;  // of its walk; nearly nothing for a coin that is held at a dollar
};

constexpr double kHeld = 0.01;
constexpr std::array kCoins = {
    Coin{"bitcoin", "btc", "Bitcoin", 62000},
    Coin{"ethereum", "eth", "Ethereum", 3100},
    Coin{"tether", "usdt", "Tether", 1, kHeld},
    Coin{"binancecoin", "bnb", "BNB", 590},
    Coin{"solana", "sol", "Solana", 148},
    Coin{"usd-coin", "usdc", "USDC", 1, kHeld},
    Coin{"ripple", "xrp", "XRP", 0.58},
    Coin{"dogecoin", "doge", "Dogecoin", 0.13, 1.5},
    Coin{"the-open-network", "ton", "Toncoin", 5.6},
    Coin{"cardano", "ada", "Cardano", 0.42},
    Coin{"tron", "trx", "TRON", 0.15, 0.6},
    Coin{"shiba-inu", "shib", "Shiba Inu", 0.0000182, 1.5},
    Coin{"avalanche-2", "avax", "Avalanche", 27.5},
    Coin{"chainlink", "link", "Chainlink", 13.2},
    Coin{"bitcoin-cash", "bch", "Bitcoin Cash", 385},
    Coin{"polkadot", "dot", "Polkadot", 5.4},
    Coin{"litecoin", "ltc", "Litecoin", 71},
    Coin{"near", "near", "NEAR Protocol", 5.1},
    Coin{"uniswap", "uni", "Uniswap", 8.3},
    Coin{"pepe", "pepe", "Pepe", 0.0000112, 1.5},
    Coin{"monero", "xmr", "Monero", 158, 0.6},
    Coin{"stellar", "xlm", "Stellar", 0.105},
};

constexpr Step kHour = 60;
constexpr Step kDay = 24 * kHour;
constexpr Step kWeek = 7 * kDay;

std::uint64_t mix(std::uint64_t value) {  // the finalizer of SplitMix64
    value += 0x9e3779b97f4a7c15;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9;
    value = (value ^ (value >> 27)) * 0x94d049bb133111eb;
    return value ^ (value >> 31);
}

std::uint64_t hashOf(std::string_view text) {  // FNV-1a
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    }
    return mix(hash);
}

/// From 0 to 1.
double fraction(std::uint64_t hash) {
    return static_cast<double>(hash >> 11) * 0x1p-53;
}

/// Brownian motion by midpoint displacement (Lévy's construction): any step can be had without those before it.
double walk(std::uint64_t seed, Step step) {
    if (step == 0) {
        return 0;
    }
    double left = 0;
    double right = 0;
    Step at = 0;
    double deviation = 0x1p15 * std::sqrt(3.0);  // of a middle: half the root of its interval; sqrt(3) for a flat draw
    for (Step half = Step{1} << 31;; half >>= 1, deviation *= std::sqrt(0.5)) {
        const Step middle = at + half;
        const double value = (left + right) / 2 + deviation * (2 * fraction(mix(seed ^ mix(middle))) - 1);
        if (step == middle) {
            return value;
        }
        if (step < middle) {
            right = value;
        } else {
            left = value;
            at = middle;
        }
    }
}

/// As many decimals as a service would show, so that every answer can hold the price unrounded.
double rounded(double price) {
    const double scale = price >= 1000 ? 1e2 : price >= 1 ? 1e4 : 1e8;
    return std::max(std::round(price * scale) / scale, 1e-8);
}

CoinState stateOf(std::uint64_t seed, const Coin& coin, Step step) {
    constexpr double kDeviationOfOneStep = 0.0008;  // three percent a day
    const std::uint64_t coinSeed = seed ^ hashOf(coin.id);
    const Step now = step + kWeek;
    const auto logPrice = [&](Step at) { return walk(coinSeed, at) * kDeviationOfOneStep * coin.liveliness; };
    const auto price = [&](double log) { return rounded(coin.start * std::exp(log)); };

    double high = logPrice(now);
    double low = high;
    CoinState state{.id = std::string(coin.id), .symbol = {}, .name = std::string(coin.name), .week = {}};
    std::ranges::transform(coin.symbol, std::back_inserter(state.symbol),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    state.price = price(high);
    for (Step back = 1; back <= kDay; ++back) {
        const double then = logPrice(now - back);
        high = std::max(high, then);
        low = std::min(low, then);
    }
    state.open = price(logPrice(now - kDay));
    state.high = price(high);
    state.low = price(low);
    const Step thisHour = (now - 1) / kHour * kHour;  // never this very moment, which is appended
    constexpr Step kHours = kWeek / kHour;
    for (Step hours = kHours - 1; hours > 0; --hours) {
        state.week.push_back(price(logPrice(thisHour - (hours - 1) * kHour)));
    }
    state.week.push_back(state.price);
    return state;
}

CoinState find(std::uint64_t seed, std::string_view name, std::string_view Coin::* by, Step step) {
    std::string lower(name);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const auto* const known = std::ranges::find(kCoins, std::string_view(lower), by);
    if (known != kCoins.end()) {
        return stateOf(seed, *known, step);
    }
    const double start = std::pow(10, -3 + 6 * fraction(hashOf(lower)));
    return stateOf(seed, {.id = lower, .symbol = lower, .name = name, .start = start}, step);
}

}  // namespace

CoinState Market::byId(std::string_view id, Step step) const {
    return find(seed_, id, &Coin::id, step);
}

CoinState Market::bySymbol(std::string_view symbol, Step step) const {
    return find(seed_, symbol, &Coin::symbol, step);
}

CoinState Market::at(std::string_view venue, CoinState coin, Step step) const {
    constexpr double kUsual = 0.0012;
    constexpr double kMoving = 0.0004;
    const std::uint64_t venueSeed = seed_ ^ hashOf(venue) ^ mix(hashOf(coin.id));
    const auto signedFraction = [](std::uint64_t hash) { return 2 * fraction(hash) - 1; };
    const double premium =
        kUsual * signedFraction(mix(venueSeed)) + kMoving * signedFraction(mix(venueSeed ^ mix(step)));
    for (double* price : {&coin.price, &coin.open, &coin.high, &coin.low}) {
        *price = rounded(*price * (1 + premium));
    }
    coin.week.back() = coin.price;
    return coin;
}

NetworkFees Market::fees(Step step) const {
    const auto fee = [&](std::string_view network, double start) {
        const double log = walk(seed_ ^ hashOf(network), step + kWeek) * 0.004;
        return start * std::exp(std::clamp(log, -2.0, 2.0));
    };
    return {.bitcoin = fee("fee of bitcoin", 14), .ethereum = fee("fee of ethereum", 2.4)};
}

std::vector<std::string> Market::wellKnownIds() {
    std::vector<std::string> ids;
    ids.reserve(kCoins.size());
    for (const Coin& coin : kCoins) {
        ids.emplace_back(coin.id);
    }
    return ids;
}

}  // namespace glintar::demo
