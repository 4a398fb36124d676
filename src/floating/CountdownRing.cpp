#include "floating/CountdownRing.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>

namespace glintar::floating {

using namespace std::chrono_literals;
using platform::Duration;
using platform::Instant;
using platform::Seconds;

namespace {

constexpr Duration kShortestStep = 20ms;

double stepCount(double scale) {
    return std::max(1.0, std::round(std::numbers::pi * CountdownRing::kDiameter * scale));
}

}  // namespace

void CountdownRing::setNextRefresh(Instant now, Instant due, Seconds interval) {
    const auto look = looksUntil(now);
    movement_ = movementAfter(look);
    look_ = look;
    due_ = due;
    interval_ = interval;
}

double CountdownRing::progress(Instant now) const {
    const auto look = looksUntil(now);
    const auto [from, to] = movementAfter(look);
    return std::lerp(from, to, Seconds(now - start_).count() - static_cast<double>(look));
}

double CountdownRing::shownProgress(double progress, double scale) {
    const double steps = stepCount(scale);
    return std::ceil(progress * steps) / steps;
}

std::optional<Duration> CountdownRing::unchangedFor(Instant now, double scale) const {
    const double shown = shownProgress(progress(now), scale);
    const double less = shown - 1 / stepCount(scale);
    const auto first = looksUntil(now);
    auto look = first;
    while (true) {
        const auto [from, to] = movementAfter(look);
        const bool rises = to > shown;
        if (rises || (to <= less && shown > 0)) {
            const Seconds passed(static_cast<double>(look) + ((rises ? shown : less) - from) / (to - from));
            // A little late, so that the step is surely due by then.
            const auto wait = std::chrono::ceil<Duration>(passed - Seconds(now - start_)) + 1ms;
            return std::max(wait, kShortestStep);
        }
        if (look > first && to <= 0) {
            return std::nullopt;
        }
        // After the next look it only falls; those at which it is still too full need not be tried one by one.
        const auto nearby = static_cast<std::int64_t>(std::floor((Seconds(due_ - start_) - interval_ * less).count()));
        look = look == first ? first + 1 : std::max(look + 1, nearby);
    }
}

std::int64_t CountdownRing::looksUntil(Instant time) const {
    return std::chrono::floor<std::chrono::seconds>(time - start_).count();
}

CountdownRing::Movement CountdownRing::movementAfter(std::int64_t look) const {
    if (look == look_) {
        return movement_;
    }
    return {look == look_ + 1 ? movement_.to : seenAt(look - 1), seenAt(look)};
}

double CountdownRing::seenAt(std::int64_t look) const {
    return std::clamp((Seconds(due_ - start_) - Seconds(static_cast<double>(look))) / interval_, 0.0, 1.0);
}

}  // namespace glintar::floating
