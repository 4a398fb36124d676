#pragma once

#include "config/Coin.h"
#include "config/CoinCatalogue.h"
#include "config/CoinSearch.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::platform {
struct Platform;
}

namespace glintar::settings {

/// What the "Coins" tab shows and does: the list of watched coins, and the row by which one is added. Every change is
/// stored and announced at once. A list that others write while the tab is open replaces `coins`; what has been typed
/// stays. Main thread only.
class coinsSettingsViewModel {  // NOLINT(readability-identifier-naming): a given name
public:
    explicit coinsSettingsViewModel(platform::Platform& platform);

    /// Reads the list at once. The catalogue follows as soon as the screen is painted, or is needed.
    void loadCoins();
    void saveCoins();
    void loadCoinCatalogue();

    /// Suggests coins for what stands in the name field.
    void filterCoins();
    void addCoin();
    void removeCoin(std::string_view id);
    void removeCoins(const std::set<std::size_t>& positions);
    void updateLimit();
    void selectSuggestion(std::string suggestion);

    void setName(std::string text);
    /// Keeps digits and points alone.
    void setRefPrice(std::string_view text);

    /// "BTC (bitcoin)", "Ref: 98000.00" (none without a price), and what stands in place of the add row.
    [[nodiscard]] static std::string rowText(const config::Coin& coin);
    [[nodiscard]] static std::optional<std::string> badgeText(const config::Coin& coin);
    [[nodiscard]] std::string limitText() const;

    /// Runs after anything below has changed.
    std::function<void()> onChange;

    std::vector<config::Coin> coins;
    std::string newCoinDisplayName;
    std::string newCoinRefPrice;
    bool isSaved = false;
    std::vector<std::string> filteredCoins;
    std::optional<std::string> errorMessage;
    std::size_t maxCoins = 5;
    bool canAddCoin = true;

private:
    struct Chosen {
        std::string displayName;
        std::string apiId;  ///< empty: none was found
    };
    [[nodiscard]] Chosen choose(std::string_view text) const;
    void readCoins();
    void changed();
    void fail(std::string message);

    platform::Platform& platform_;
    config::CoinCatalogue allCoinEntries_;
    std::optional<config::CoinSearch> search_;  ///< in it, once it is loaded
    platform::TimerHandle catalogueLoading_;
    std::unique_ptr<platform::NotificationCenter::Observation> updates_;
};

}  // namespace glintar::settings
