#include "platform/qt/strip/StripSight.h"

#include <QRegion>
#include <xcb/shape.h>

#include <algorithm>
#include <cstdint>
#include <span>

namespace glintar::platform {

namespace {

template <class Cookie, class Reply>
XcbOwned<Reply> answer(xcb_connection_t* xcb, Cookie asked,
                       Reply* (*collect)(xcb_connection_t*, Cookie, xcb_generic_error_t**)) {
    return XcbOwned<Reply>(collect(xcb, asked, nullptr));
}

using Tree = XcbOwned<xcb_query_tree_reply_t>;

Tree treeOf(xcb_connection_t* xcb, xcb_window_t window) {
    return answer(xcb, xcb_query_tree(xcb, window), xcb_query_tree_reply);
}

std::span<const xcb_window_t> childrenOf(const Tree& tree) {
    return {xcb_query_tree_children(tree.get()), static_cast<std::size_t>(xcb_query_tree_children_length(tree.get()))};
}

QRegion shapeOf(xcb_connection_t* xcb, xcb_window_t window, xcb_shape_kind_t kind) {
    const auto shape = answer(xcb, xcb_shape_get_rectangles(xcb, window, kind), xcb_shape_get_rectangles_reply);
    QRegion region;
    for (int index = 0; shape && index < xcb_shape_get_rectangles_rectangles_length(shape.get()); ++index) {
        const auto& part = xcb_shape_get_rectangles_rectangles(shape.get())[index];
        region += QRect(part.x, part.y, part.width, part.height);
    }
    return region;
}

/// The one below the root that holds the window: what the window manager put around it, if not itself.
xcb_window_t outermost(xcb_connection_t* xcb, xcb_window_t window) {
    while (const Tree around = treeOf(xcb, window)) {
        if (around->parent == around->root) {
            break;
        }
        window = around->parent;
    }
    return window;
}

bool isTranslucent(XcbConnection& connection, xcb_window_t window) {
    constexpr std::uint32_t kNearlyOpaque = 0xffffffff / 10 * 9;
    const auto opacity = connection.property(window, "_NET_WM_WINDOW_OPACITY", 1);
    return !opacity.empty() && opacity.front() <= kNearlyOpaque;
}

/// What of the screen it hides.
QRegion coverBy(XcbConnection& connection, xcb_window_t window) {
    xcb_connection_t* const xcb = connection.get();
    const auto attributes = answer(xcb, xcb_get_window_attributes(xcb, window), xcb_get_window_attributes_reply);
    const auto frame = answer(xcb, xcb_get_geometry(xcb, window), xcb_get_geometry_reply);
    if (!attributes || !frame || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT || shapeOf(xcb, window, XCB_SHAPE_SK_INPUT).isEmpty() ||
        isTranslucent(connection, window)) {
        return {};
    }
    return shapeOf(xcb, window, XCB_SHAPE_SK_BOUNDING)
        .translated(frame->x + frame->border_width, frame->y + frame->border_width);
}

}  // namespace

ItemSight::Cover coverOf(XcbConnection& connection, xcb_window_t window, const PixelArea& part,
                         const std::vector<xcb_rectangle_t>& screens) {
    using enum ItemSight::Cover;
    xcb_connection_t* const xcb = connection.get();
    const auto corner =
        answer(xcb, xcb_translate_coordinates(xcb, window, connection.root(), 0, 0), xcb_translate_coordinates_reply);
    const Tree all = treeOf(xcb, connection.root());
    if (!corner || !all) {
        return Windows;
    }
    const QRect area(corner->dst_x + part.x, corner->dst_y + part.y, part.width, part.height);
    // Who made a window is told by its number: the X server, whose windows compositors paint on, by none.
    const auto makerOf = [bits = ~xcb_get_setup(xcb)->resource_id_mask](xcb_window_t other) { return other & bits; };
    const auto isOurs = [&](xcb_window_t other) { return makerOf(other) == makerOf(window) || makerOf(other) == 0; };

    QRegion seen(area);
    bool isFilled = false;
    const auto windows = childrenOf(all);
    const auto own = std::ranges::find(windows, outermost(xcb, window));
    for (const xcb_window_t other : std::span(own, windows.end())) {
        const QRegion cover = isOurs(other) ? QRegion() : coverBy(connection, other);
        const Tree framed = cover.intersects(area) ? treeOf(xcb, other) : nullptr;
        if (framed && std::ranges::none_of(childrenOf(framed), isOurs)) {
            seen -= cover;
            isFilled |= std::ranges::any_of(screens, [&](const xcb_rectangle_t& screen) {
                const QRect whole(screen.x, screen.y, screen.width, screen.height);
                return whole.intersects(area) && (QRegion(whole) - cover).isEmpty();
            });
        }
    }
    connection.handOutQueued();
    return isFilled ? FullScreen : seen.isEmpty() ? Windows : None;
}

}  // namespace glintar::platform
