#include "arbiter/ArbiterDetailView.h"

#include "config/Settings.h"
#include "menubar/CoinIcons.h"
#include "platform/DesktopEvents.h"
#include "platform/Machine.h"
#include "platform/Platform.h"
#include "platform/WorkQueue.h"
#include "presenter/RefreshState.h"

#include <utility>

namespace glintar::arbiter {

namespace {

using namespace std::chrono_literals;

constexpr auto kTick = 500ms;
constexpr auto kPricesKept = 10s;

}  // namespace

ArbiterDetailView::ArbiterDetailView(platform::Platform& platform, const platform::Graphics& graphics,
                                     std::vector<config::Coin> shownCoins, std::optional<market::MarketDataMap> quotes)
    : coins(std::move(shownCoins)), cachedData(std::move(quotes)), platform_(platform), graphics_(graphics) {
    // The requests that were under way may have gone with their connections: the next tick asks once more.
    for (const auto name : {platform::kMachineResumed, platform::kNetworkCameBack}) {
        wakeUps_.push_back(
            platform.notifications.observe(name, [this] { lastKnownNextFetchTime = platform::Instant::min(); }));
    }
}

void ArbiterDetailView::appeared() {
    isVisible = true;
    timer = platform_.runLoop.every(kTick, [this] { tick(); });
    if (arbitrageList.empty()) {
        refresh(cachedData);
    }
}

void ArbiterDetailView::disappeared() {
    isVisible = false;
    timer.reset();
}

void ArbiterDetailView::tick() {
    for (const auto& row : arbitrageList) {
        row->dropKeptPrices(platform_.runLoop.now());
    }
    const auto& state = presenter::RefreshState::shared(platform_);
    if (state.nextFetchTime != lastKnownNextFetchTime) {
        refresh(state.latestMarketData);
    }
}

void ArbiterDetailView::refresh(const std::optional<market::MarketDataMap>& quotes) {
    lastKnownNextFetchTime = presenter::RefreshState::shared(platform_).nextFetchTime;
    auto rows = ArbitrageService::shared(platform_).fetchArbitrageData(
        coins, quotes, config::Settings::load(platform_.preferences).selectedSourceID);
    for (std::size_t i = 0; i < arbitrageList.size(); ++i) {
        rows[i]->keepPrices(*arbitrageList[i], platform_.runLoop.now() + kPricesKept);
    }
    arbitrageList = std::move(rows);
    columns_.resize(arbitrageList.size());
    for (std::size_t i = 0; i < arbitrageList.size(); ++i) {
        showRow(i, arbitrageList[i]);
    }
    statusText = arbitrageList.empty() ? "Waiting for data..."
                                       : "Updated: " + platform_.localTime.clockText(platform_.runLoop.wallNow());
    changed();
}

void ArbiterDetailView::showRow(std::size_t index, const std::shared_ptr<CoinArbitrageData>& row) {
    // An answer that is being read holds the row for a moment longer than we do.
    row->onChange = lifetime_.guard([this] { changed(); });
    columns_[index].data = row;
    if (!columns_[index].icon) {
        loadIcon(index);
    }
}

void ArbiterDetailView::loadIcon(std::size_t index) {
    const auto icons = menubar::CoinIcons::shared(platform_, graphics_).weak_from_this();
    auto show = lifetime_.guard([this, index](const platform::ImagePtr& icon) {
        columns_[index].icon = icon;
        changed();
    });
    platform_.workQueue.async(
        [icons, apiId = coins[index].apiId, &loop = platform_.runLoop, show = std::move(show)]() mutable {
            const auto kept = icons.lock();
            if (auto icon = kept ? kept->icon(apiId) : nullptr) {
                loop.post([show = std::move(show), icon = std::move(icon)]() mutable { show(icon); });
            }
        });
}

void ArbiterDetailView::changed() {
    if (std::exchange(isChangeTold_, false)) {
        platform_.runLoop.post(lifetime_.guard([this] {
            isChangeTold_ = true;
            if (const auto told = onChange) {
                told();
            }
        }));
    }
}

}  // namespace glintar::arbiter
