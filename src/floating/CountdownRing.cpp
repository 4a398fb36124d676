#include "floating/CountdownRing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace glintar::floating::ring {

namespace {

double stepCount(double scale) {
    return std::max(1.0, std::round(2 * std::numbers::pi * kRadius * scale));
}

}  // namespace

double timeProgress(platform::Seconds remaining, platform::Seconds interval) {
    return std::clamp(remaining / interval, 0.0, 1.0);
}

double shownProgress(double progress, double scale) {
    const double steps = stepCount(scale);
    return std::ceil(progress * steps) / steps;
}

platform::Seconds unchangedFor(platform::Seconds remaining, platform::Seconds interval, double scale) {
    const double shown = shownProgress(timeProgress(remaining, interval), scale);
    return std::max(platform::Seconds::zero(), remaining - interval * (shown - 1 / stepCount(scale)));
}

}  // namespace glintar::floating::ring
