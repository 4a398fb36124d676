#pragma once

#include "platform/RunLoop.h"
#include "platform/xcb/OverlayStacking.h"
#include "platform/xcb/Pixels.h"
#include "platform/xcb/XcbConnection.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace glintar::platform {

/// A window above all others that shows a picture, is never given the focus and lets the mouse through. The window
/// manager has no part in it, so it stands wherever it is put, beyond the edges of the screen too.
///
/// The X server keeps the picture and repaints it by itself. Nothing here waits for an answer, but for the atoms of the
/// first window.
class XcbOverlay {
public:
    /// Premultiplied ARGB from the top left, row by row without gaps.
    struct Pixels {
        std::span<const std::uint32_t> argb;
        int width = 0;
        int height = 0;
    };

    /// `loop` is where it waits before it raises itself again.
    XcbOverlay(XcbConnection& connection, RunLoop& loop, std::string_view title);
    XcbOverlay(const XcbOverlay&) = delete;
    XcbOverlay& operator=(const XcbOverlay&) = delete;
    ~XcbOverlay();

    /// False when the X server has no colours with an alpha channel.
    [[nodiscard]] bool canBeTranslucent() const { return depth_ == 32; }

    /// Makes the window as large as the picture, in the same step as it moves. Nothing is done for no pixels.
    void setPicture(const Pixels& pixels, PixelPoint topLeft);

    /// What lies outside these parts of the picture, from the top and from the left, is no part of the window; nothing
    /// does where there are none. Seen with the next picture.
    void setShape(std::span<const xcb_rectangle_t> parts);

    void move(PixelPoint topLeft);

    /// From 0 to 1; for a compositor to heed.
    void setOpacity(double opacity);

    /// The frames of the single screens. Below a window that locks one of them, or all, it stays.
    void setScreens(std::vector<xcb_rectangle_t> screens) { stacking_->setScreens(std::move(screens)); }

    /// Shown on top of all others but locks, and again if it was shown already.
    void show();
    void hide();
    [[nodiscard]] bool isShown() const { return isShown_; }

private:
    void chooseVisual();
    void makeWindow(std::string_view title);
    void describe(std::string_view title);

    XcbConnection& connection_;
    std::uint8_t depth_ = 0;
    xcb_visualid_t visual_ = 0;
    xcb_colormap_t colormap_ = XCB_NONE;
    xcb_window_t window_ = XCB_NONE;
    xcb_gcontext_t context_ = XCB_NONE;
    bool isShown_ = false;
    std::optional<OverlayStacking> stacking_;  // from the start on
};

}  // namespace glintar::platform
