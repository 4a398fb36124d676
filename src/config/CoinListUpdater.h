#pragma once

#include "config/RemoteResourceUpdater.h"

namespace glintar::config {

/// Posted after a new coin catalogue has been written.
inline constexpr std::string_view kCoinListUpdated = "CoinListUpdated";

/// Keeps the coin catalogue up to date. Only a document that decodes as a catalogue, with a coin in it, replaces the
/// stored one; a catalogue already in memory stays as it is.
class CoinListUpdater final : public RemoteResourceUpdater {
public:
    static constexpr std::string_view listFileName = "coingecko_coins_list.json";
    static constexpr std::string_view kVersionKey = "coin_list_version";

    /// The one of this process.
    static CoinListUpdater& shared(platform::Platform& platform);

    explicit CoinListUpdater(platform::Platform& platform);
};

}  // namespace glintar::config
