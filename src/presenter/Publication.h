#pragma once

#include "market/MarketData.h"
#include "platform/RunLoop.h"
#include "presenter/StatusLine.h"

#include <cstdint>
#include <optional>
#include <string>

namespace glintar::presenter {

/// What the copy of the program that asks the services tells the others. It holds no API key.
struct Publication {
    std::int64_t generation = 1;  ///< higher after each take-over from a copy that still holds its lock
    std::string wish;             ///< what was asked for, sealed
    platform::BootInstant made;
    platform::BootInstant nextFetch;
    platform::Seconds interval{};
    Outcome outcome;
    std::string tooltip;
    market::MarketDataMap quotes;
    std::optional<market::NetworkFee> fee;
};

[[nodiscard]] std::string encode(const Publication& publication);

/// None for a damaged text.
[[nodiscard]] std::optional<Publication> decodePublication(std::string text);

}  // namespace glintar::presenter
