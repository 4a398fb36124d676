#pragma once

#include <cstdint>

namespace glintar::market {

/// Whose fee is shown: Bitcoin's in sat/vB, Ethereum's in Gwei.
enum class GasNetwork { Ethereum, Bitcoin };

/// The network that a value of the preference `gasSource` stands for.
[[nodiscard]] constexpr GasNetwork gasNetworkOf(std::int64_t gasSource) {
    return gasSource == 1 ? GasNetwork::Bitcoin : GasNetwork::Ethereum;
}

}  // namespace glintar::market
