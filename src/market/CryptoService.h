#pragma once

#include "config/AppConfig.h"
#include "config/Coin.h"
#include "market/MarketData.h"
#include "market/SourceCoolDowns.h"
#include "platform/HttpClient.h"
#include "platform/NotificationCenter.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::platform {
struct Platform;
}

namespace glintar::market {

/// Posted on the main thread half a second after a source's cool-down has ended.
inline constexpr std::string_view kCoolDownEnded = "CoolDownEnded";

/// Gets quotes and the network fee from the services of the source configuration.
///
/// Fetches are started on the main thread and never wait. Every completion runs exactly once while the run loop runs:
/// before the call returns for what fails without a request, else on the HTTP client's thread or the work queue.
/// Failures are short English texts, which the presenter shortens further. Lives in a `shared_ptr`, which answers under
/// way hold weakly.
class CryptoService : public std::enable_shared_from_this<CryptoService> {
public:
    using MarketCompletion = std::move_only_function<void(MarketDataMap, std::optional<std::string> error)>;
    using FeeCompletion = std::move_only_function<void(std::optional<double> fee)>;
    /// Body or error; neither for a good answer without a body.
    using SourceCompletion =
        std::move_only_function<void(std::optional<std::string> body, std::optional<std::string> error)>;
    using SourcePtr = std::shared_ptr<const config::SourceConfig>;

    /// The one of this process. The first use loads the configuration and starts its version check.
    static CryptoService& shared(platform::Platform& platform);

    explicit CryptoService(platform::Platform& platform);
    CryptoService(const CryptoService&) = delete;
    CryptoService& operator=(const CryptoService&) = delete;

    /// Quotes of the coins from the selected source; one request for all or one for each, as the source wants it.
    /// Partial success is no error.
    void fetchMarketData(const std::vector<config::Coin>& coins, MarketCompletion completion);

    /// The current fee of the network chosen in the preferences (sat/vB or Gwei); none on any failure.
    void fetchGasPrice(FeeCompletion completion);

    /// Sends one GET to a source, unless it is cooling down. A 5xx answer is tried again a second later, as often as
    /// `retriesLeft` says; a 429 answer starts a cool-down of a minute. Any thread.
    void performRequest(std::string address, SourcePtr source, std::string apiKey, int retriesLeft,
                        SourceCompletion completion);

    /// Reads the configuration anew: the downloaded copy, else the shipped one.
    void loadConfig();

    /// What was read last; none until a load succeeds.
    [[nodiscard]] const std::shared_ptr<const config::AppConfig>& loadedConfig() const { return loadedConfig_; }

private:
    struct SentRequest;

    void handleConfigUpdated();
    void handleResponse(SentRequest request, platform::HttpResult result);
    void startCoolDown(const std::string& sourceId);
    void fetchEachCoin(const std::vector<config::Coin>& coins, const SourcePtr& source, const std::string& apiKey,
                       MarketCompletion completion);
    void fetchBatch(const std::vector<config::Coin>& coins, const SourcePtr& source, const std::string& apiKey,
                    MarketCompletion completion);

    platform::Platform& platform_;
    std::shared_ptr<const config::AppConfig> loadedConfig_;
    SourceCoolDowns sourceCoolDowns_;
    std::unique_ptr<platform::NotificationCenter::Observation> configUpdated_;
};

}  // namespace glintar::market
