#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::platform {
class Entropy;
struct Platform;
}  // namespace glintar::platform

namespace glintar::config {

/// A watched coin.
struct Coin {
    std::string id;                        ///< UUID of the list row (RFC 9562, version 4), 36 characters
    std::string displayName;               ///< what the user sees, in practice the symbol
    std::string apiId;                     ///< what the services know it by; quotes are keyed by it
    std::optional<double> referencePrice;  ///< 0 or less counts as none
};

/// A fresh UUID (RFC 9562, version 4), in upper case.
[[nodiscard]] std::string randomUuid(platform::Entropy& entropy);

/// A coin with a fresh random `id`.
[[nodiscard]] Coin makeCoin(platform::Entropy& entropy, std::string displayName, std::string apiId,
                            std::optional<double> referencePrice);

/// One coin, BTC, with a fresh `id`.
[[nodiscard]] std::vector<Coin> defaultCoinList(platform::Entropy& entropy);

/// The stored form of a coin list: a compact JSON array, in display order; an absent reference price leaves its key
/// out.
[[nodiscard]] std::string encodeCoins(const std::vector<Coin>& coins);

/// All or nothing: one bad element refuses the list.
[[nodiscard]] std::expected<std::vector<Coin>, std::string> decodeCoins(std::string text);

/// The user's list as it is stored now, or the default list when nothing valid is. Main thread.
[[nodiscard]] std::vector<Coin> loadSavedCoins(platform::Platform& platform);

/// Preference key of the list, and the notice that it, the source or a key has been saved.
inline constexpr std::string_view kSavedCoinsKey = "savedCoins";
inline constexpr std::string_view kCoinsUpdated = "CoinsUpdated";

}  // namespace glintar::config
