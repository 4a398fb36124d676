#pragma once

#include "platform/StatusBar.h"
#include "platform/xcb/Pixels.h"
#include "platform/xcb/XcbConnection.h"

#include <vector>

namespace glintar::platform {

/// What covers a part of a window. `part` is in pixels from the window's top left corner. `screens` are the frames of
/// all screens.
///
/// It asks the X server about each window, since what the server tells by itself is wrong under a compositor. Windows
/// of our own, translucent ones and those that let the mouse through cover nothing.
[[nodiscard]] ItemSight::Cover coverOf(XcbConnection& connection, xcb_window_t window, const PixelArea& part,
                                       const std::vector<xcb_rectangle_t>& screens);

}  // namespace glintar::platform
