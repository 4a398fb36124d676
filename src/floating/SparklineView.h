#pragma once

#include "platform/Graphics.h"

#include <vector>

namespace glintar::floating {

/// A coin's recent prices as a line: the oldest at the left edge, the highest at the top.
struct SparklineView {
    std::vector<double> prices;  ///< oldest first
    platform::Color color;
    bool operator==(const SparklineView&) const = default;

    /// Nothing for fewer than two prices; equal prices lie on the bottom edge.
    void draw(platform::Canvas& canvas, const platform::Rect& frame) const;
};

}  // namespace glintar::floating
