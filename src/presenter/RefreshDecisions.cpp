#include "presenter/RefreshDecisions.h"

#include <algorithm>

namespace glintar::presenter {

using namespace std::chrono_literals;
using platform::Duration;

namespace {

constexpr auto kDebounceWindow = 2s;
constexpr Duration kForcedDelay = 10ms;
constexpr Duration kTimerDelay = 200ms;

}  // namespace

std::optional<Duration> delayOf(Urgency urgency, const CycleState& state, platform::Instant now) {
    if (urgency == Urgency::Forced) {
        return kForcedDelay;
    }
    const bool isTooSoon = state.lastRequestTime && now - *state.lastRequestTime < kDebounceWindow;
    return isTooSoon ? std::nullopt : std::optional(kTimerDelay);
}

Duration delayOfEarlyRefresh(const CycleState& state, platform::Instant now) {
    const auto earliest = state.lastRequestTime ? *state.lastRequestTime + kDebounceWindow : now;
    return std::max<Duration>(kForcedDelay, earliest - now);
}

WakeUp afterSleep(CycleState& state, platform::BootInstant now) {
    state.isDoubtful = state.isFetching;
    const bool isPast = now >= state.nextFetchDue;
    const bool isDue = state.isRunning && isPast;
    state.isStale = isDue && state.isFetching;
    return {.dropsConnections = isDue || (isPast && !state.isFetching), .refreshes = isDue};
}

WakeUp afterNetworkCameBack(CycleState& state) {
    state.isDoubtful = state.isFetching;
    return {.dropsConnections = state.hasFailed || !state.isFetching, .refreshes = state.isRunning && state.hasFailed};
}

AfterFetch afterFetch(CycleState& state, const FetchEnd& end) {
    using Next = AfterFetch::Next;
    state.isFetching = false;
    if (state.isStale) {
        return {.isShown = false, .takesQuotes = false, .next = Next::Early};
    }
    if (end.askedForQuotes) {
        state.hasFailed = end.hasError;
    }
    AfterFetch after{.takesQuotes = end.askedForQuotes && end.isSameSource};
    if (!end.isSameWish) {
        after.next = Next::Everything;
    } else if (end.askedForQuotes && end.hasError && state.isDoubtful) {
        after.next = Next::Early;
    } else if (!end.isFeeRight) {
        after.next = Next::OnlyGas;
    }
    return after;
}

}  // namespace glintar::presenter
