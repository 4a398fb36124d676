#include "menubar/ProgressImage.h"

#include "menubar/PillColors.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace glintar::menubar {

namespace {

constexpr double kDiameter = 21;
constexpr double kRadius = kDiameter / 2;

int stepsOf(double scale) {
    static constexpr double kStepsPerPixel = 2;
    return std::max(1, static_cast<int>(std::lround(2 * std::numbers::pi * kRadius * scale * kStepsPerPixel)));
}

double clamped(double elapsed) {
    return elapsed > 0 ? std::min(elapsed, 1.0) : 0;
}

int stepAt(double elapsed, int steps) {
    // A timer that is set for the next step must find it, whatever was lost in rounding.
    static constexpr double kTolerance = 1e-6;
    return static_cast<int>(clamped(elapsed) * steps + kTolerance);
}

}  // namespace

platform::ImagePtr renderProgressImage(const platform::Graphics& graphics, const platform::ImagePtr& source,
                                       double elapsed, double scale) {
    static constexpr platform::Size kSize{28, kDiameter};
    static constexpr platform::Rect kFrame{0, 0, kDiameter, kDiameter};
    static constexpr platform::Point kCenter{kRadius, kRadius};
    return graphics.draw(kSize, scale, [&](platform::Canvas& canvas) {
        if (source) {
            canvas.drawImage(*source, kFrame, 0.3);
            canvas.drawImageInPie(*source, kFrame,
                                  {.center = kCenter, .radius = 15, .start = 90, .sweep = -360 * clamped(elapsed)});
        }
        canvas.strokeArc({.center = kCenter, .radius = 10}, platform::Color::white(0.2, 0.8), 1,
                         platform::Canvas::Caps::Butt);
    });
}

platform::ImagePtr Countdown::pictureAt(double elapsed, std::string_view sourceId, const Look& look) {
    const int steps = stepsOf(look.scale);
    const int step = stepAt(elapsed, steps);
    const bool isSame = last_ && last_->sourceId == sourceId && last_->look == look;
    if (isSame && last_->step == step) {
        return nullptr;
    }
    if (!isSame) {
        auto source = graphics_.image(sourceId);
        if (!source) {
            source = graphics_.symbol("network", kDiameter, colorNamed("text", look.appearance));
        }
        last_ = {std::string(sourceId), look, std::move(source)};
    }
    last_->step = step;
    return renderProgressImage(graphics_, last_->source, static_cast<double>(step) / steps, look.scale);
}

platform::Seconds Countdown::unchangedFor(double elapsed, platform::Seconds interval, double scale) {
    static constexpr platform::Seconds kLeast{0.001};
    const int steps = stepsOf(scale);
    const double toNext = stepAt(elapsed, steps) + 1 - clamped(elapsed) * steps;
    return std::max(kLeast, interval * (toNext / steps));
}

}  // namespace glintar::menubar
