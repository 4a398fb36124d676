#pragma once

#include "floating/FloatingContent.h"
#include "floating/PanelLayout.h"
#include "platform/Graphics.h"

#include <optional>

namespace glintar::platform {
class Preferences;
}

namespace glintar::floating {

/// The panel's content as one picture: a plate with a countdown ring, the source and the fee above a row for each coin.
/// Draws only when it would look different. Main thread only.
class FloatingView {
public:
    struct Surroundings {
        platform::Appearance appearance = platform::Appearance::Light;
        double scale = 1;           ///< pixels to a point
        bool isTranslucent = true;  ///< whether what lies beneath the picture shows through
        bool operator==(const Surroundings&) const = default;
    };

    /// Both must outlive the view.
    FloatingView(const platform::Preferences& preferences, const platform::Graphics& graphics)
        : preferences_(preferences), graphics_(graphics) {}

    /// Draws the picture; false, and nothing is drawn, when it looks as before. `timeProgress` is what is left of the
    /// refresh interval, from 0 to 1.
    bool update(const FloatingState& state, const Surroundings& surroundings, double timeProgress);

    /// Of the panel itself, without the shadow's margin.
    [[nodiscard]] platform::Size fittingSize() const { return layout_.plate.size(); }
    [[nodiscard]] double margin() const { return layout_.plate.x; }
    [[nodiscard]] const platform::ImagePtr& picture() const { return picture_; }

private:
    void drawBase();
    void paintPlate(platform::Canvas& canvas) const;
    void paintContent(platform::Canvas& canvas) const;
    void paintInOneColor(platform::Canvas& canvas, const platform::Color& color) const;

    const platform::Preferences& preferences_;
    const platform::Graphics& graphics_;
    FloatingContent content_;
    Surroundings surroundings_;
    double shownProgress_ = 1;
    PanelLayout layout_;
    platform::ImagePtr base_;     ///< all but the green of the ring, since the shadow takes long
    platform::ImagePtr picture_;  ///< null before the first update
};

}  // namespace glintar::floating
