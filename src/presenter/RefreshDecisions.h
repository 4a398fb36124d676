#pragma once

#include "platform/RunLoop.h"

#include <optional>
#include <string>
#include <vector>

namespace glintar::presenter {

// When quotes are asked for, what the end of a fetch means and what follows a wake-up: rules over a small state, which
// start nothing themselves. `StatusBarController` keeps the timers and does as they say.

/// Where the refresh cycle stands.
struct CycleState {
    bool isRunning = false;   ///< its timer has been started
    bool isFetching = false;  ///< one fetch at most is under way
    bool hasFailed = false;   ///< the last fetch that asked for quotes
    bool isStale = false;     ///< the fetch was cut off by a sleep during which the next refresh fell due
    bool isDoubtful = false;  ///< the machine slept or the network came back while it was under way
    std::optional<platform::Instant> lastRequestTime;  ///< when the last fetch began
    platform::BootInstant nextFetchDue;
};

enum class Urgency { Timer, Forced };

/// How long a refresh that is asked for now waits, so that a burst becomes one. None when it is dropped: unforced and
/// within two seconds of the last.
[[nodiscard]] std::optional<platform::Duration> delayOf(Urgency urgency, const CycleState& state,
                                                        platform::Instant now);

/// How long the next refresh waits when it is made ahead of its time: two seconds lie between requests, however often
/// the network comes and goes.
[[nodiscard]] platform::Duration delayOfEarlyRefresh(const CycleState& state, platform::Instant now);

struct WakeUp {
    bool dropsConnections = false;
    bool refreshes = false;
    bool operator==(const WakeUp&) const = default;
};

/// The timers stood still while the machine slept, and the markets did not. The servers have hung up meanwhile; a
/// connection would learn that only after ten seconds without an answer.
[[nodiscard]] WakeUp afterSleep(CycleState& state, platform::BootInstant now);

/// A fetch that may well succeed is left alone.
[[nodiscard]] WakeUp afterNetworkCameBack(CycleState& state);

/// What is wanted of the services at one moment.
struct Wish {
    std::string source;
    std::vector<std::string> coins;  ///< identifiers, in the user's order
    std::string key;
    bool operator==(const Wish&) const = default;
};

/// How a fetch ended, beside what is wanted now.
struct FetchEnd {
    bool askedForQuotes = true;
    bool hasError = false;
    bool isSameSource = true;
    bool isSameWish = true;  ///< source, coins and key are those that it began with
    bool isFeeRight = true;  ///< it asked for the fee that is wanted now, if any
};

struct AfterFetch {
    enum class Next { Nothing, Everything, OnlyGas, Early };
    bool isShown = true;      ///< otherwise nothing of it is used
    bool takesQuotes = true;  ///< those of another source are dropped
    Next next = Next::Nothing;
    bool operator==(const AfterFetch&) const = default;
};

/// Marks the fetch as over.
[[nodiscard]] AfterFetch afterFetch(CycleState& state, const FetchEnd& end);

}  // namespace glintar::presenter
