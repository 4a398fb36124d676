#pragma once

#include <chrono>
#include <expected>
#include <memory>
#include <string>

namespace glintar::demo {

/// Plays the services of a market at 127.0.0.1, each behind its name: /binance/api/v3/ticker/24hr?symbol=BTCUSDT.
///
/// Besides, /control/fault?kind=KIND says what they all do from now on: refuse with that status ("429"), "hang", break
/// off in the middle ("truncated"), answer in "html", with JSON of another shape ("wrong"), with 100 MB ("huge"), with
/// 100,000 nested arrays ("deep"), with a string that is no UTF-8 ("badutf8"), or well ("off"). /control/log lists the
/// requests that came so far, one a line: path and query as they were sent, before them "HEAD " for such a request, and
/// behind them a blank and the API key where one came.
class MarketServer {
public:
    /// Connections are taken from now on, by threads of its own; the error says why they cannot be. Prices move once
    /// in every `step`.
    [[nodiscard]] static std::expected<std::unique_ptr<MarketServer>, std::string> start(
        std::chrono::milliseconds step = std::chrono::seconds{1});

    /// Waits for the answers under way, but not for those that hang. A connection that a client keeps open
    /// can hold it up for some seconds.
    ~MarketServer();

    MarketServer(const MarketServer&) = delete;
    MarketServer& operator=(const MarketServer&) = delete;

    [[nodiscard]] const std::string& address() const;  ///< "http://127.0.0.1:PORT"

private:
    struct Parts;
    explicit MarketServer(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

}  // namespace glintar::demo
