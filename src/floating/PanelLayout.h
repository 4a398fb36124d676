#pragma once

#include "floating/FloatingContent.h"
#include "floating/PixelGrid.h"
#include "platform/Graphics.h"

#include <variant>
#include <vector>

namespace glintar::floating {

/// Where everything of the panel lies: a header above a grid with one row a coin. The frames count from the bottom left
/// corner of the picture, which is larger than the panel by the margin on every side.
struct PanelLayout {
    struct Ring {};
    struct Divider {};
    struct Symbol {
        StyledSymbol style;
        platform::ImagePtr image;
    };
    struct Item {
        std::variant<StyledText, Symbol, platform::ImagePtr, SparklineView, Divider, Ring> what;
        platform::Rect frame;  ///< begins on a whole pixel
    };

    platform::Rect plate;  ///< the panel; whole pixels
    platform::Rect ring;   ///< that of the one item which is a ring
    std::vector<Item> items;
};

/// As large as the content needs. `margin` is whole pixels.
[[nodiscard]] PanelLayout layOutPanel(const FloatingContent& content, const platform::Graphics& graphics,
                                      const PixelGrid& pixels, double margin);

}  // namespace glintar::floating
