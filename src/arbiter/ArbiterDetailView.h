#pragma once

#include "arbiter/ArbiterColumnView.h"
#include "arbiter/ArbitrageService.h"
#include "market/MarketData.h"
#include "platform/Lifetime.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace glintar::platform {
class Graphics;
struct Platform;
}  // namespace glintar::platform

namespace glintar::arbiter {

/// What the dashboard shows: a column for each coin, and the footer. While it is visible it asks all sources again each
/// time the refresh cycle has begun another interval, and when the network came back. Main thread only.
class ArbiterDetailView {
public:
    /// Keeps the references. `cachedData` are the selected source's quotes at the moment of opening.
    ArbiterDetailView(platform::Platform& platform, const platform::Graphics& graphics, std::vector<config::Coin> coins,
                      std::optional<market::MarketDataMap> cachedData);
    ArbiterDetailView(const ArbiterDetailView&) = delete;
    ArbiterDetailView& operator=(const ArbiterDetailView&) = delete;

    void appeared();
    void disappeared();

    [[nodiscard]] const std::vector<ArbiterColumnView>& columns() const { return columns_; }

    /// Runs at most once a turn of the run loop, after columns or footer have changed.
    std::function<void()> onChange;
    /// The user has pressed the close button. It may destroy the view.
    std::function<void()> onClose;

    std::vector<config::Coin> coins;
    std::optional<market::MarketDataMap> cachedData;
    ArbitrageService::Rows arbitrageList;
    bool isVisible = false;
    platform::Instant lastKnownNextFetchTime = platform::Instant::min();
    std::string statusText = "Ready";
    platform::TimerHandle timer;

private:
    void tick();
    void refresh(const std::optional<market::MarketDataMap>& quotes);
    void showRow(std::size_t index, const std::shared_ptr<CoinArbitrageData>& row);
    void loadIcon(std::size_t index);
    void changed();

    platform::Platform& platform_;
    const platform::Graphics& graphics_;
    std::vector<ArbiterColumnView> columns_;
    bool isChangeTold_ = true;
    std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> wakeUps_;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::arbiter
