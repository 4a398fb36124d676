#include "platform/xcb/WorkAreaWatch.h"

#include <utility>

namespace glintar::platform {

WorkAreaWatch::WorkAreaWatch(XcbConnection& connection, RunLoop& loop) : connection_(connection) {
    // Not at once: the other listeners would wait for the answer.
    changed_ = connection_.onRootProperty("_NET_WORKAREA",
                                          [this, &loop] { look_ = loop.after(Duration::zero(), [this] { look(); }); });
    area_ = ask();
    connection_.handOutQueued();
}

void WorkAreaWatch::look() {
    const auto now = ask();
    connection_.handOutQueued();
    if (connection_.isAlive() && std::exchange(area_, now) != now) {
        listeners_.call();
    }
}

/// Of the first desktop: panels are on all of them.
std::optional<PixelArea> WorkAreaWatch::ask() const {
    const auto numbers = connection_.property(connection_.root(), "_NET_WORKAREA", 4);
    if (numbers.size() != 4) {
        return {};
    }
    return PixelArea{static_cast<int>(numbers[0]), static_cast<int>(numbers[1]), static_cast<int>(numbers[2]),
                     static_cast<int>(numbers[3])};
}

}  // namespace glintar::platform
