#include "platform/xcb/SelectionWatch.h"

#include <xcb/xfixes.h>

namespace glintar::platform {

SelectionWatch::SelectionWatch(XcbConnection& connection, std::string_view selection)
    : selection_(connection.atom(selection)) {
    xcb_connection_t* const xcb = connection.get();
    events_ = connection.onEvent([this](const xcb_generic_event_t& event) { see(event); });
    if (const auto* extension = xcb_get_extension_data(xcb, &xcb_xfixes_id); extension && extension->present) {
        notifyEvent_ = extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
        // The server serves the extension only to those who have asked for its version.
        xcb_discard_reply(xcb, xcb_xfixes_query_version(xcb, 5, 0).sequence);
        xcb_xfixes_select_selection_input(xcb, connection.screen().root, selection_,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    const XcbOwned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(xcb, xcb_get_selection_owner(xcb, selection_), nullptr));
    isOwned_ = owner && owner->owner != XCB_NONE;
    connection.handOutQueued();
}

void SelectionWatch::see(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != notifyEvent_) {
        return;
    }
    const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    const bool isOwned = change.owner != XCB_NONE;
    if (change.selection == selection_ && isOwned != isOwned_) {
        isOwned_ = isOwned;
        listeners_.call();
    }
}

}  // namespace glintar::platform
