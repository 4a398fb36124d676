#pragma once

#include "config/Coin.h"
#include "market/MarketData.h"
#include "platform/RunLoop.h"
#include "presenter/StatusLine.h"

#include <optional>
#include <string_view>
#include <vector>

namespace glintar::presenter {

/// What the panel that follows the pointer is given.
struct PanelData {
    std::vector<config::Coin> coins;  ///< at most five
    market::MarketDataMap quotes;
    std::optional<market::NetworkFee> gasPrice;
    platform::Instant nextFetchTime;
};

/// Where prices are shown: in the status bar, or in the panel that follows the pointer.
enum class DisplayMode { Line, Panel };

/// How far it is to the next refresh.
struct RefreshProgress {
    double elapsed = 0;  ///< of the interval, from 0 to 1
    platform::Seconds remaining{};
    platform::Seconds interval{};
};

/// Where the presenter's results go: the pills in the status bar, the panel that follows the pointer, or a line of
/// text. Main thread only.
///
/// The presenter asks these questions each time, so that what nobody can see costs no timer.
class StatusSurface {
public:
    virtual ~StatusSurface() = default;

    /// Shows the line or the panel and hides the other.
    virtual void show(DisplayMode mode) = 0;

    /// What the line shows from now on. Without a `tooltip` the one that is shown stays.
    virtual void showLine(const StatusLine& line, std::optional<std::string> tooltip) = 0;
    virtual void updatePanel(PanelData data) = 0;

    /// A refresh has ended and what it brought has been shown.
    virtual void refreshCompleted() = 0;

    /// Whether a countdown to the next refresh can be seen. Asked after each line and before each picture of it.
    [[nodiscard]] virtual bool showsProgress() const = 0;

    /// Shows the countdown; returns how long it will look the same.
    virtual platform::Seconds showProgress(const RefreshProgress& progress) = 0;

    /// Whether the line can be hidden, by other windows or for lack of room.
    [[nodiscard]] virtual bool canBeCovered() const = 0;
    /// Looks whether it is. Called only where it can be.
    virtual void checkVisibility() = 0;

    /// Sets the text of the dashboard entry of the menu, and whether it can be chosen.
    virtual void updateDashboardItem(std::string_view title, bool enabled) = 0;
};

}  // namespace glintar::presenter
