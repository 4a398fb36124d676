#pragma once

#include "platform/xcb/XcbConnection.h"

namespace glintar::platform {

/// Whether there is an owner of a selection by which a program tells that it serves the whole screen. Main thread only.
class SelectionWatch {
public:
    SelectionWatch(XcbConnection& connection, std::string_view selection);

    [[nodiscard]] bool isOwned() const { return isOwned_; }

    /// Runs when the first owner has come or the last has gone; never on servers without the XFixes extension.
    [[nodiscard]] Listening onChange(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

private:
    void see(const xcb_generic_event_t& event);

    xcb_atom_t selection_;
    int notifyEvent_ = -1;
    bool isOwned_ = false;
    Listeners<> listeners_;
    Listening events_;
};

}  // namespace glintar::platform
