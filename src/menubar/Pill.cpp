#include "menubar/Pill.h"

#include <algorithm>
#include <cmath>

namespace glintar::menubar {

using platform::Color;

platform::ImagePtr drawPill(const platform::Graphics& graphics, const Look& look, double width,
                            const std::function<void(platform::Canvas&)>& paint) {
    static constexpr double kRadius = 4;
    // Whole pixels, so that both sides of the plate are equally sharp.
    const platform::Size size{std::ceil(std::min(width, kWidestPill) * look.scale - 1e-6) / look.scale, kPillHeight};
    const bool isDark = look.appearance == platform::Appearance::Dark;
    return graphics.draw(size, look.scale, [&](platform::Canvas& canvas) {
        const platform::Rect plate{0.5, 0, size.width - 1, 22};
        canvas.fillRounded(plate, kRadius, Color::white(isDark ? 0.15 : 0.9));
        canvas.strokeRounded(plate, kRadius, Color::white(isDark ? 0.3 : 0.6), 1);
        paint(canvas);
    });
}

}  // namespace glintar::menubar
