#include "platform/xcb/OverlayPixels.h"

#include <algorithm>

namespace glintar::platform {

namespace {

constexpr std::uint32_t kHalf = 128;

constexpr std::uint32_t alphaOf(std::uint32_t pixel) {
    return pixel >> 24;
}

std::uint32_t opaque(std::uint32_t pixel) {
    const std::uint32_t alpha = alphaOf(pixel);
    if (alpha == 0 || alpha == 255) {
        return pixel | 0xff000000;
    }
    const auto component = [&](int shift) {
        return std::min<std::uint32_t>(((pixel >> shift & 0xff) * 255 + alpha / 2) / alpha, 255) << shift;
    };
    return 0xff000000 | component(16) | component(8) | component(0);
}

}  // namespace

std::vector<xcb_rectangle_t> opaqueParts(const XcbOverlay::Pixels& pixels) {
    std::vector<xcb_rectangle_t> parts;
    std::size_t above = 0;  // where the parts of the row above begin
    for (int y = 0; y < pixels.height; ++y) {
        const auto row = pixels.argb.subspan(static_cast<std::size_t>(y) * pixels.width, pixels.width);
        const std::size_t begin = parts.size();
        for (auto at = row.begin(); at != row.end();) {
            const auto from = std::find_if(at, row.end(), [](auto pixel) { return alphaOf(pixel) >= kHalf; });
            at = std::find_if(from, row.end(), [](auto pixel) { return alphaOf(pixel) < kHalf; });
            if (from != at) {
                parts.push_back({static_cast<std::int16_t>(from - row.begin()), static_cast<std::int16_t>(y),
                                 static_cast<std::uint16_t>(at - from), 1});
            }
        }
        const auto isBelow = [](const xcb_rectangle_t& upper, const xcb_rectangle_t& lower) {
            return upper.x == lower.x && upper.width == lower.width && upper.y + upper.height == lower.y;
        };
        if (std::equal(parts.begin() + above, parts.begin() + begin, parts.begin() + begin, parts.end(), isBelow)) {
            std::for_each(parts.begin() + above, parts.begin() + begin, [](auto& part) { ++part.height; });
            parts.resize(begin);
        } else {
            above = begin;
        }
    }
    return parts;
}

std::vector<std::uint32_t> madeOpaque(std::span<const std::uint32_t> argb) {
    std::vector<std::uint32_t> made(argb.size());
    std::ranges::transform(argb, made.begin(), opaque);
    return made;
}

}  // namespace glintar::platform
