#pragma once

#include "config/CoinCatalogue.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::config {

/// Finds entries of a catalogue by what the user typed, in upper or lower case. Looks at every text, kept in lower
/// case: 0.17 ms of processor time for 17,399 coins, so no index is kept.
class CoinSearch {
public:
    explicit CoinSearch(const CoinCatalogue& catalogue);

    /// Places of the entries whose symbol, identifier or name begins with `prefix` (in lower case, not empty): those
    /// with the shortest symbols, in characters, at most `limit`; among equals as in the catalogue.
    [[nodiscard]] std::vector<std::size_t> startingWith(std::string_view prefix, std::size_t limit) const;

    /// The first entry with this symbol, else the first with this identifier; both in lower case.
    [[nodiscard]] std::optional<std::size_t> named(std::string_view text) const;

private:
    enum Field : std::size_t { kSymbol, kId, kName, kFields };
    [[nodiscard]] std::size_t size() const { return ends_.size() / kFields; }
    [[nodiscard]] std::string_view text(std::size_t index, Field field) const;
    [[nodiscard]] std::optional<std::size_t> first(Field field, std::string_view text) const;

    std::string lowered_;              ///< the texts one after the other
    std::vector<std::uint32_t> ends_;  ///< where each ends
};

}  // namespace glintar::config
