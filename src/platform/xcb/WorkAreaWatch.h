#pragma once

#include "platform/xcb/XcbConnection.h"

#include <cstdint>
#include <optional>

namespace glintar::platform {

/// Pixels of the X server from the top left.
struct PixelArea {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const PixelArea&) const = default;
};

/// What panels leave free of all screens together, as the window manager says (`_NET_WORKAREA`). Main thread only.
class WorkAreaWatch {
public:
    explicit WorkAreaWatch(XcbConnection& connection);

    /// None where nobody says.
    [[nodiscard]] const std::optional<PixelArea>& area() const { return area_; }

    [[nodiscard]] Listening onChange(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

private:
    void see(const xcb_generic_event_t& event);
    [[nodiscard]] std::optional<PixelArea> ask() const;

    XcbConnection& connection_;
    xcb_atom_t property_;
    std::optional<PixelArea> area_;
    Listeners<> listeners_;
    Listening events_;
};

}  // namespace glintar::platform
