#pragma once

#include "arbiter/ArbiterDetailView.h"
#include "config/Coin.h"
#include "market/MarketData.h"
#include "platform/Geometry.h"
#include "platform/Lifetime.h"
#include "platform/Window.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace glintar::platform {
struct Desktop;
struct Platform;
}  // namespace glintar::platform

namespace glintar::arbiter {

/// Owns the dashboard's panel while there is one. Only the close button, Escape, the window manager or a second toggle
/// close it. Main thread only.
class ArbiterWindowController {
public:
    using MakeView = platform::ViewFactory<ArbiterDetailView>;
    /// Where the pressed button is; none when that is not known, as in the tray. It is asked again when screens change.
    using Anchor = std::function<std::optional<platform::Rect>()>;

    /// The one of this process; it ends with the platform's registry, which must go before the desktop.
    static ArbiterWindowController& shared(platform::Platform& platform, platform::Desktop& desktop,
                                           const MakeView& makeView);

    /// Keeps the references.
    ArbiterWindowController(platform::Platform& platform, platform::Desktop& desktop, MakeView makeView);
    ArbiterWindowController(const ArbiterWindowController&) = delete;
    ArbiterWindowController& operator=(const ArbiterWindowController&) = delete;
    ~ArbiterWindowController();

    /// Closes the panel that is on screen, else shows one. `cachedMarketData` are the selected source's last quotes.
    void toggleWindow(Anchor anchor, std::vector<config::Coin> coins,
                      std::optional<market::MarketDataMap> cachedMarketData);
    void closeWindow();

private:
    void presentWindow(Anchor anchor, std::vector<config::Coin> coins,
                       std::optional<market::MarketDataMap> cachedMarketData);
    void makeWindow();
    void placeIfVisible();
    void place();

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    MakeView makeView_;
    Anchor anchor_;
    bool isMoved_ = false;
    std::unique_ptr<ArbiterDetailView> detail_;
    std::unique_ptr<platform::Window> window;  // goes before what its view shows
    platform::Lifetime lifetime_;              // last member
};

}  // namespace glintar::arbiter
