#pragma once

#include "arbiter/CoinArbitrageData.h"

#include <memory>
#include <string>
#include <vector>

namespace glintar::config {
struct SourceConfig;
}

namespace glintar::arbiter {

// Reading of the answers to cross-source requests. Any thread; the prices reach the rows on the main thread.

/// An answer about all coins: with `response_type` "array", each element goes to the first row with its identifier;
/// otherwise each row takes the member with its key, or with its key in upper case. Null rows are passed over. A body
/// that is no JSON gives one line in the log.
void parseBatchResult(std::string body, const config::SourceConfig& source,
                      const std::vector<std::shared_ptr<CoinArbitrageData>>& rows, platform::Platform& platform);

/// An answer about the row's coin: an object, or with "array_first" the first of an array.
void parseSingleResult(std::string body, const config::SourceConfig& source, CoinArbitrageData& row,
                       platform::Platform& platform);

/// A source's price, ready to be added to a row.
[[nodiscard]] ArbiterPrice priceOf(const config::SourceConfig& source, double price, platform::Platform& platform);

}  // namespace glintar::arbiter
