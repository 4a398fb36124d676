#include "platform/xcb/XcbOverlay.h"

#include <xcb/shape.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace glintar::platform {

namespace {

/// As far as the X server counts.
std::int32_t coordinate(int value) {
    return std::clamp(value, -32768, 32767);
}

}  // namespace

XcbOverlay::XcbOverlay(XcbConnection& connection, RunLoop& loop, std::string_view title) : connection_(connection) {
    chooseVisual();
    makeWindow(title);
    stacking_.emplace(connection, loop, window_);
}

XcbOverlay::~XcbOverlay() {
    xcb_free_gc(connection_.get(), context_);
    xcb_destroy_window(connection_.get(), window_);
    if (colormap_ != XCB_NONE) {
        xcb_free_colormap(connection_.get(), colormap_);
    }
    connection_.flush();
}

void XcbOverlay::chooseVisual() {
    depth_ = connection_.screen().root_depth;
    visual_ = connection_.screen().root_visual;
    auto depths = xcb_screen_allowed_depths_iterator(&connection_.screen());
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; depths.data->depth == 32 && visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            if (visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR && visuals.data->red_mask == 0xff0000) {
                depth_ = 32;
                visual_ = visuals.data->visual_id;
                return;
            }
        }
    }
}

void XcbOverlay::makeWindow(std::string_view title) {
    xcb_connection_t* const xcb = connection_.get();
    window_ = xcb_generate_id(xcb);
    xcb_create_window_value_list_t values{};
    values.border_pixel = 0;
    values.override_redirect = 1;
    std::uint32_t mask = XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT;
    if (depth_ != connection_.screen().root_depth) {
        colormap_ = xcb_generate_id(xcb);
        xcb_create_colormap(xcb, XCB_COLORMAP_ALLOC_NONE, colormap_, connection_.root(), visual_);
        values.colormap = colormap_;
        mask |= XCB_CW_COLORMAP;
    }
    xcb_create_window_aux(xcb, depth_, window_, connection_.root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          visual_, mask, &values);
    context_ = xcb_generate_id(xcb);
    xcb_create_gc(xcb, context_, window_, 0, nullptr);
    xcb_shape_rectangles(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, window_, 0, 0, 0,
                         nullptr);
    xcb_get_maximum_request_length(xcb);  // asks for it the first time only
    describe(title);
}

/// For window rules and for compositors; a window manager does not look at such a window.
void XcbOverlay::describe(std::string_view title) {
    xcb_connection_t* const xcb = connection_.get();
    const auto setText = [&](xcb_atom_t property, xcb_atom_t type, std::string_view text) {
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    };
    setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, title);
    setText(connection_.atom("_NET_WM_NAME"), connection_.atom("UTF8_STRING"), title);
    setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string_view("glintar\0glintar\0", 16));
    const xcb_atom_t type = connection_.atom("_NET_WM_WINDOW_TYPE_NOTIFICATION");
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window_, connection_.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32,
                        1, &type);
    // The picture has a shadow of its own; by this name compositors know that they shall add none.
    const std::uint32_t none = 0;
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window_, connection_.atom("_COMPTON_SHADOW"), XCB_ATOM_CARDINAL, 32,
                        1, &none);
    connection_.handOutQueued();
}

void XcbOverlay::setShape(std::span<const xcb_rectangle_t> parts) {
    if (parts.empty()) {
        xcb_shape_mask(connection_.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window_, 0, 0, XCB_NONE);
    } else {
        xcb_shape_rectangles(connection_.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_SORTED,
                             window_, 0, 0, static_cast<std::uint32_t>(parts.size()), parts.data());
    }
}

/// As the window's background, which the X server paints wherever the window comes to light.
void XcbOverlay::setPicture(const Pixels& pixels, PixelPoint topLeft) {
    if (pixels.width <= 0 || pixels.height <= 0) {
        return;
    }
    xcb_connection_t* const xcb = connection_.get();
    const auto width = static_cast<std::uint16_t>(pixels.width);
    const auto height = static_cast<std::uint16_t>(pixels.height);
    const xcb_pixmap_t pixmap = xcb_generate_id(xcb);
    xcb_create_pixmap(xcb, depth_, pixmap, window_, width, height);
    const std::size_t room = xcb_get_maximum_request_length(xcb) * std::size_t{4} - 64;
    const int rowsAtOnce = std::max(1, static_cast<int>(room / (std::size_t{4} * width)));
    for (int y = 0; y < pixels.height; y += rowsAtOnce) {
        const int rows = std::min(rowsAtOnce, pixels.height - y);
        const auto part = pixels.argb.subspan(std::size_t{width} * y, std::size_t{width} * rows);
        xcb_put_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context_, width, static_cast<std::uint16_t>(rows), 0,
                      static_cast<std::int16_t>(y), 0, depth_, static_cast<std::uint32_t>(part.size_bytes()),
                      reinterpret_cast<const std::uint8_t*>(part.data()));
    }
    xcb_change_window_attributes(xcb, window_, XCB_CW_BACK_PIXMAP, &pixmap);
    const std::array values{static_cast<std::uint32_t>(coordinate(topLeft.x)),
                            static_cast<std::uint32_t>(coordinate(topLeft.y)), std::uint32_t{width},
                            std::uint32_t{height}};
    xcb_configure_window(xcb, window_,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    xcb_clear_area(xcb, 0, window_, 0, 0, 0, 0);
    xcb_free_pixmap(xcb, pixmap);
    connection_.flush();
}

void XcbOverlay::move(PixelPoint topLeft) {
    const std::array values{static_cast<std::uint32_t>(coordinate(topLeft.x)),
                            static_cast<std::uint32_t>(coordinate(topLeft.y))};
    xcb_configure_window(connection_.get(), window_, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values.data());
    connection_.flush();
}

void XcbOverlay::setOpacity(double opacity) {
    const auto value = static_cast<std::uint32_t>(std::llround(std::clamp(opacity, 0.0, 1.0) * 0xffffffffU));
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, connection_.atom("_NET_WM_WINDOW_OPACITY"),
                        XCB_ATOM_CARDINAL, 32, 1, &value);
    connection_.flush();
}

void XcbOverlay::show() {
    stacking_->keepOnTop();
    xcb_map_window(connection_.get(), window_);
    connection_.flush();
    isShown_ = true;
}

void XcbOverlay::hide() {
    stacking_->leaveAlone();
    xcb_unmap_window(connection_.get(), window_);
    connection_.flush();
    isShown_ = false;
}

}  // namespace glintar::platform
