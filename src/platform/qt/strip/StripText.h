#pragma once

#include "platform/StatusBar.h"

#include <string>
#include <vector>

namespace glintar::platform {

/// What stands in the strip at one place of a title: a picture, or room of that width if there is none.
struct TitlePart {
    ImagePtr picture;
    double width = 0;
    double bottom = 0;  ///< above the lower end of the strip
    std::string description;
};

/// The title as pictures from left to right. Texts are drawn on a plate in the manner of the pills, since nobody knows
/// what is behind the strip; blank ones are room.
[[nodiscard]] std::vector<TitlePart> titleParts(const AttributedText& title, const Graphics& graphics, double scale,
                                                Appearance appearance);

}  // namespace glintar::platform
