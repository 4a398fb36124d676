#pragma once

#include "menubar/Pill.h"
#include "platform/RunLoop.h"

#include <optional>
#include <string>
#include <string_view>

namespace glintar::menubar {

/// The countdown to the next refresh, 28 by 21 points: the source's image, dimmed, its bright part growing clockwise
/// from twelve o'clock with `elapsed` from 0 to 1. Without an image (null) the ring alone.
[[nodiscard]] platform::ImagePtr renderProgressImage(const platform::Graphics& graphics,
                                                     const platform::ImagePtr& source, double elapsed, double scale);

/// Draws that picture only when it looks different: each time the edge of its bright part has moved by half a pixel at
/// the rim.
class Countdown {
public:
    explicit Countdown(const platform::Graphics& graphics) : graphics_(graphics) {}

    /// The picture for that moment; null when it looks like the last one. A source whose image was not shipped is
    /// shown as a network.
    [[nodiscard]] platform::ImagePtr pictureAt(double elapsed, std::string_view sourceId, const Look& look);

    /// How long the picture of that moment stays as it is, of a countdown that takes `interval` in all. At the end of
    /// the countdown, where only a new one brings a change, as long as at any other moment; never zero.
    [[nodiscard]] static platform::Seconds unchangedFor(double elapsed, platform::Seconds interval, double scale);

private:
    struct Drawn {
        std::string sourceId;
        Look look;
        platform::ImagePtr source;
        int step = 0;
    };
    const platform::Graphics& graphics_;
    std::optional<Drawn> last_;
};

}  // namespace glintar::menubar
