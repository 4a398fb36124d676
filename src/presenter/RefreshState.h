#pragma once

#include "market/MarketData.h"
#include "platform/RunLoop.h"

namespace glintar::platform {
struct Platform;
}

namespace glintar::presenter {

/// What the refresh cycle tells the rest of the process. Written by the presenter; main thread only.
struct RefreshState {
    platform::Seconds currentInterval{60.0};
    platform::Instant nextFetchTime;  ///< the time of first use until a timer starts
    market::MarketDataMap latestMarketData;

    static RefreshState& shared(platform::Platform& platform);
};

}  // namespace glintar::presenter
