#pragma once

#include "platform/xcb/SelectionWatch.h"

#include <fmt/format.h>

namespace glintar::platform {

/// Whether a compositor owns the screen, so that windows can be translucent.
class CompositorWatch : public SelectionWatch {
public:
    explicit CompositorWatch(XcbConnection& connection)
        : SelectionWatch(connection, fmt::format("_NET_WM_CM_S{}", connection.screenNumber())) {}

    [[nodiscard]] bool isRunning() const { return isOwned(); }
};

}  // namespace glintar::platform
