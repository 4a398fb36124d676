#pragma once

#include "floating/FloatingContent.h"
#include "floating/PanelLayout.h"
#include "platform/Graphics.h"

#include <functional>

namespace glintar::platform {
class Preferences;
}

namespace glintar::floating {

/// The panel's content as one picture: a plate with a countdown ring, the source and the fee above a row for each coin.
/// Draws only when it would look different. Without a compositor the plate has a rim of one pixel instead of a shadow,
/// and in transparent mode the text has an outline. Main thread only.
class FloatingView {
public:
    struct Surroundings {
        platform::Appearance appearance = platform::Appearance::Light;
        double scale = 1;           ///< pixels to a point
        bool isTranslucent = true;  ///< whether what lies beneath the picture shows through
        bool operator==(const Surroundings&) const = default;
    };

    /// Both must outlive the view.
    explicit FloatingView(const platform::Graphics& graphics) : graphics_(graphics) {}

    /// Draws the picture; false, and nothing is drawn, when it looks as before. `timeProgress` is how much of the ring
    /// is there, from 0 to 1.
    bool update(const FloatingState& state, const Surroundings& surroundings, double timeProgress);

    /// The desktop draws texts or colours differently: the next update draws anew.
    void forgetLook() { picture_.reset(); }

    /// Of the panel itself, without the shadow's margin.
    [[nodiscard]] platform::Size fittingSize() const { return layout_.plate.size(); }
    [[nodiscard]] double margin() const { return layout_.plate.x; }
    [[nodiscard]] const platform::ImagePtr& picture() const { return picture_; }

private:
    [[nodiscard]] platform::ImagePtr draw(const std::function<void(platform::Canvas&)>& paint) const;
    [[nodiscard]] platform::ImagePtr drawBase() const;
    [[nodiscard]] platform::ImagePtr withShadow(const platform::ImagePtr& image) const;
    void paintArc(platform::Canvas& canvas, const platform::Rect& frame) const;
    void paintArcShadow(platform::Canvas& canvas) const;
    void paintPlate(platform::Canvas& canvas) const;
    void paintOutline(platform::Canvas& canvas) const;

    const platform::Graphics& graphics_;
    FloatingContent content_;
    Surroundings surroundings_;
    double shownProgress_ = 1;
    PanelLayout layout_;
    platform::ImagePtr base_;     ///< all but the green of the ring, since the shadow takes long
    platform::ImagePtr picture_;  ///< null before the first update
};

}  // namespace glintar::floating
