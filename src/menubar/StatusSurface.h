#pragma once

#include "config/Coin.h"
#include "market/MarketData.h"
#include "menubar/StatusLine.h"
#include "platform/RunLoop.h"

#include <optional>
#include <string_view>
#include <vector>

namespace glintar::menubar {

/// What the panel that follows the pointer is given.
struct PanelData {
    std::vector<config::Coin> coins;  ///< at most five
    market::MarketDataMap quotes;
    std::optional<double> gasPrice;
    platform::Instant nextFetchTime;
};

/// Where the presenter's results go: a row of pills on a screen, or a line of text. Main thread only.
///
/// The questions are asked each time; what nobody can see costs no timer.
class StatusSurface {
public:
    virtual ~StatusSurface() = default;

    /// Shows the line. `tooltip` is none when it is to stay as it was.
    virtual void showLine(const StatusLine& line, std::optional<std::string> tooltip) = 0;
    virtual void hideLine() = 0;

    /// A refresh has ended and what it brought has been shown.
    virtual void refreshCompleted() = 0;

    /// Whether a countdown to the next refresh is to be seen, and its picture: `elapsed` from 0 to 1.
    [[nodiscard]] virtual bool showsProgress() const = 0;
    virtual void showProgress(double elapsed, platform::Seconds remaining) = 0;

    /// Whether other windows can cover the line, and the look whether they do.
    [[nodiscard]] virtual bool canBeCovered() const = 0;
    virtual void checkVisibility() = 0;

    virtual void updatePanel(PanelData data) = 0;
    virtual void updateDashboardItem(std::string_view title, bool enabled) = 0;
};

}  // namespace glintar::menubar
