#include "platform/xcb/CompositorWatch.h"

#include <fmt/format.h>

namespace glintar::platform {

CompositorWatch::CompositorWatch(XcbConnection& connection)
    : selection_(connection, fmt::format("_NET_WM_CM_S{}", connection.screenNumber())) {}

}  // namespace glintar::platform
