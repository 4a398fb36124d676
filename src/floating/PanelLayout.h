#pragma once

#include "floating/FloatingContent.h"
#include "platform/Graphics.h"

#include <vector>

namespace glintar::floating {

/// Where everything of the panel lies: a header above a grid with one row a coin. The frames count from the bottom left
/// corner of the picture, which is larger than the panel by the margin on every side.
struct PanelLayout {
    struct Text {
        StyledText text;
        platform::Rect frame;
    };
    struct Symbol {
        StyledSymbol symbol;
        platform::ImagePtr image;
        platform::Rect frame;
    };
    struct Sparkline {
        SparklineView view;
        platform::Rect frame;
    };

    platform::Rect plate;  ///< the panel
    platform::Rect ring;
    platform::ImagePtr sourceImage;  ///< may be null, and a symbol stands in its place
    platform::Rect sourceImageFrame;
    std::vector<Text> texts;
    std::vector<Symbol> symbols;
    std::vector<platform::Rect> dividers;
    std::vector<Sparkline> sparklines;
};

/// As large as the content needs; whole pixels.
[[nodiscard]] PanelLayout layOutPanel(const FloatingContent& content, const platform::Graphics& graphics, double scale,
                                      double margin);

}  // namespace glintar::floating
