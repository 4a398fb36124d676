#pragma once

#include "arbiter/CoinArbitrageData.h"
#include "config/AppConfig.h"
#include "market/MarketData.h"
#include "platform/DispatchGroup.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::platform {
struct HttpRequest;
}

namespace glintar::arbiter {

/// Asks all sources of the source configuration for the same coins, all at the same time.
///
/// Its requests are plain: no API key, no header, no cool-down, no retry. None is ever cancelled, but an answer for
/// rows that nobody holds any more is not even read. Answers are read on the HTTP client's thread.
class ArbitrageService {
public:
    using Rows = std::vector<std::shared_ptr<CoinArbitrageData>>;

    /// The one of this process. Main thread.
    static ArbitrageService& shared(platform::Platform& platform);

    explicit ArbitrageService(platform::Platform& platform) : platform_(platform) {}
    ArbitrageService(const ArbitrageService&) = delete;
    ArbitrageService& operator=(const ArbitrageService&) = delete;

    /// One row for each coin, in their order and without prices; these come later, on the main thread. The selected
    /// source (`mainSourceID`) is not asked when its last quotes, keyed by `apiId` or `displayName`, are at hand.
    /// `requests` is entered for every request and left once its answer is in the rows' hands. Main thread.
    Rows fetchArbitrageData(const std::vector<config::Coin>& coins,
                            const std::optional<market::MarketDataMap>& cachedData, std::string_view mainSourceID,
                            const platform::DispatchGroup& requests = {});

private:
    using SourcePtr = std::shared_ptr<const config::SourceConfig>;
    using HeldRows = std::vector<std::weak_ptr<CoinArbitrageData>>;

    void addCached(const config::SourceConfig& source, const market::MarketDataMap& cached, const Rows& rows);
    void requestBatch(const SourcePtr& source, const std::vector<config::Coin>& coins, const Rows& rows,
                      const platform::DispatchGroup& requests);
    void requestEach(const SourcePtr& source, const Rows& rows, const platform::DispatchGroup& requests);

    template <class Read>
    void send(const std::string& address, HeldRows rows, const platform::DispatchGroup& requests, Read read);

    platform::Platform& platform_;
};

}  // namespace glintar::arbiter
