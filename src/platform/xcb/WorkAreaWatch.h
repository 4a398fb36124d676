#pragma once

#include "platform/RunLoop.h"
#include "platform/xcb/Pixels.h"
#include "platform/xcb/XcbConnection.h"

#include <optional>

namespace glintar::platform {

/// What panels leave free of all screens together, as the window manager says (`_NET_WORKAREA`). Main thread only.
class WorkAreaWatch {
public:
    WorkAreaWatch(XcbConnection& connection, RunLoop& loop);

    /// None where nobody says.
    [[nodiscard]] const std::optional<PixelArea>& area() const { return area_; }

    [[nodiscard]] Listening onChange(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

private:
    void look();
    [[nodiscard]] std::optional<PixelArea> ask() const;

    XcbConnection& connection_;
    std::optional<PixelArea> area_;
    Listeners<> listeners_;
    Listening changed_;
    TimerHandle look_;
};

}  // namespace glintar::platform
