// StatusBarController: one refresh for all copies of the program.

#include "config/Settings.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "presenter/RefreshState.h"
#include "presenter/SharedRefresh.h"
#include "presenter/StatusBarController.h"
#include "presenter/StatusSurface.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace glintar::presenter {

using namespace std::chrono_literals;

/// All that an answer depends on.
std::string StatusBarController::wordsOf(const Wish& wish) const {
    const auto settings = config::Settings::load(platform_.preferences);
    return fmt::format("{} {} {} {}", wish.source, wish.coins, wish.key, settings.showGasFee ? settings.gasSource : -1);
}

/// Whether nothing is asked, because another copy does or has just done so; then what it got is shown.
bool StatusBarController::isLeftToOthers(const Wish& wish) {
    const auto turn = shared_->take(wordsOf(wish), cycle_.isRunning);
    if (turn.asks) {
        if (std::exchange(isFollowing_, false)) {
            restartTimers();
        }
        return false;
    }
    if (cycle_.isRunning) {
        isFollowing_ = true;
        timer_ = platform_.runLoop.after(turn.wait, [this] { performFetch(Scope::Everything); });
    }
    if (turn.answer) {
        showPublished(*turn.answer, wish);  // last: it may end the program
    }
    return true;
}

void StatusBarController::showPublished(const Publication& page, const Wish& wish) {
    cachedSource_ = config::Settings::load(platform_.preferences).selectedSourceID;
    outcome_ = page.outcome;
    outcome_->asked = wish.coins;  // the page answers the same wish
    outcomeText_ = page.tooltip;
    cachedMarketData_ = page.quotes.empty() ? std::nullopt : std::optional(page.quotes);
    state_.latestMarketData = page.quotes;
    currentGasPrice_ = page.fee;
    cycle_.hasFailed = page.outcome.error.has_value();
    cycle_.nextFetchDue = page.nextFetch;
    state_.currentInterval = page.interval;
    state_.nextFetchTime = platform_.runLoop.now() + (page.nextFetch - platform_.runLoop.bootNow());
    const bool isNew = std::exchange(shownPage_, page.made) != page.made;
    showAll();
    if (isNew) {
        checkVisibilityAfter(500ms);
        surface_.refreshCompleted();
    }
}

/// False when another copy has taken over meanwhile, whose answer counts and is shown next.
bool StatusBarController::publish(const Wish& wish) {
    if (!shared_ || !outcome_) {
        return true;
    }
    const bool counts = shared_->publish(wordsOf(wish), {.nextFetch = cycle_.nextFetchDue,
                                                         .interval = state_.currentInterval,
                                                         .outcome = *outcome_,
                                                         .tooltip = outcomeText_,
                                                         .quotes = cachedMarketData_.value_or(market::MarketDataMap{}),
                                                         .fee = currentGasPrice_});
    if (!counts) {
        fetchAndDisplayPrice(Urgency::Forced, Scope::Everything);  // which follows
    }
    return counts;
}

void StatusBarController::onPosted() {
    if (cycle_.isRunning && shared_->hasNews(wordsOf(wish()))) {
        performFetch(Scope::Everything);
    }
}

/// A click may reach several copies, and each passes it on.
void StatusBarController::refreshForUser() {
    if (!delayOf(Urgency::Timer, cycle_, platform_.runLoop.now())) {
        return;
    }
    if (isPaused_ || !shared_ || !shared_->askPublisher(wordsOf(wish()))) {
        refreshSoon();
    }
}

}  // namespace glintar::presenter
