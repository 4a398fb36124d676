#pragma once

#include "config/Coin.h"
#include "market/MarketData.h"
#include "platform/DispatchGroup.h"
#include "platform/Lifetime.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"
#include "presenter/RefreshDecisions.h"
#include "presenter/StatusLine.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace glintar::platform {
class Noticeboard;
struct Platform;
}  // namespace glintar::platform

namespace glintar::presenter {

enum class DisplayMode;
class SharedRefresh;
class StatusSurface;
struct Publication;
struct RefreshProgress;
struct RefreshState;

/// The presenter: decides when quotes are fetched, joins them with the network fee, keeps the last good answer and
/// hands it to the surface. Every 60 seconds, or 30 when the user has an API key for the selected source. At most one
/// fetch is in flight. Main thread only.
class StatusBarController {
public:
    enum class Scope { Everything, OnlyGas };

    struct Options {
        std::optional<std::int64_t> displayMode;  ///< whatever the preferences say
        platform::Noticeboard* board = nullptr;   ///< shared with the other copies of the program, if there is one
    };

    StatusBarController(platform::Platform& platform, StatusSurface& surface, Options options);
    StatusBarController(const StatusBarController&) = delete;
    StatusBarController& operator=(const StatusBarController&) = delete;
    ~StatusBarController();

    /// Shows the line or the panel, without data yet.
    void show();

    /// Starts the timers; the first refresh comes a second later.
    void start();

    /// One refresh now, without timers. Completes at once, with nothing, when there is no coin to ask for.
    void refreshOnce();

    /// Schedules a fetch. Unforced ones within two seconds of the last are dropped; a burst becomes one.
    void fetchAndDisplayPrice(Urgency urgency, Scope scope);
    void refreshAll(Scope scope);
    void forceFullUpdate() { refreshAll(Scope::Everything); }

    /// A refresh now instead of the next one that was due, by whoever asks the services; dropped within two seconds of
    /// the last.
    void refreshForUser();

    /// From now on nobody looks: nothing is asked and no timer runs. Afterwards a refresh that fell due follows at
    /// once.
    void pause();
    void resume();

    /// Coins, source or API key may have changed.
    void onSettingsChanged();
    void onDisplaySettingsChanged();
    void onDisplayModeChanged();

    /// Shows what is known once more, as the last refresh left it; nothing before the first.
    void redisplayFromCache();

    /// The last quotes, old ones among them; none before the first.
    [[nodiscard]] const std::optional<market::MarketDataMap>& cachedMarketData() const { return cachedMarketData_; }

private:
    struct FetchResult;

    [[nodiscard]] std::int64_t displayModeNumber() const;
    void restartTimers();
    void onTimer();
    void expectNextFetch();
    [[nodiscard]] bool showsProgress() const;
    void restartProgress();
    void onProgress();
    void onActiveAppChanged();
    void onResumed();
    void onNetworkBack();
    void follow(const WakeUp& wakeUp);
    void refreshSoon();
    platform::Seconds calculateRefreshInterval();
    void performFetch(Scope scope);
    void addPhantomCoin(std::vector<config::Coin>& coins);
    bool isAnsweredByCache(const std::vector<config::Coin>& coins);
    [[nodiscard]] Wish wish();
    [[nodiscard]] std::string wordsOf(const Wish& wish) const;
    bool isLeftToOthers(const Wish& wish);
    void showPublished(const Publication& page, const Wish& wish);
    [[nodiscard]] bool publish(const Wish& wish);
    void onPosted();
    void handleFetchCompletion(FetchResult& result);
    void takeFee(const FetchResult& result);
    void takeQuotes(FetchResult& result);
    void noticeKeyRejection(const FetchResult& result);
    void forgetAll();
    void forgetWhatIsNotWanted();
    void showAll();
    void renderStatusItem();
    [[nodiscard]] std::string toolTip(const StatusLine& line) const;
    void updatePanel();
    void checkVisibilityAfter(platform::Duration delay);

    platform::Platform& platform_;
    StatusSurface& surface_;
    const Options options_;
    RefreshState& state_;
    CycleState cycle_;

    bool hasShown_ = false;  ///< anything at all
    bool isPaused_ = false;
    bool isFollowing_ = false;  ///< the timer waits for what another copy is to publish
    std::optional<platform::BootInstant> shownPage_;
    bool isApiKeyInvalid_ = false;
    std::optional<market::MarketDataMap> cachedMarketData_;
    std::string cachedSource_;        ///< whose quotes they are
    std::optional<Outcome> outcome_;  ///< of the last refresh that asked this source for quotes
    std::string outcomeText_;         ///< the same in the tooltip's words, which drawing again does not change
    std::optional<market::NetworkFee> currentGasPrice_;
    DisplayMode currentDisplayMode_;
    std::unique_ptr<SharedRefresh> shared_;
    std::int64_t lastGasSource_ = 0;
    bool lastShowGasFee_ = false;

    // Each of these calls us and ends with us.
    platform::TimerHandle timer_;
    platform::TimerHandle progressTimer_;
    platform::TimerHandle firstRefresh_;
    platform::TimerHandle pendingRequestWorkItem_;
    std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> observations_;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::presenter
