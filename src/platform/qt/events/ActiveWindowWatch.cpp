#include "platform/qt/events/ActiveWindowWatch.h"

namespace glintar::platform {

ActiveWindowWatch::ActiveWindowWatch(RunLoop& loop, XcbConnection& connection, std::function<bool(xcb_window_t)> isOwn,
                                     std::function<void()> onOtherProgram)
    : loop_(loop),
      connection_(connection),
      isOwn_(std::move(isOwn)),
      onOtherProgram_(std::move(onOtherProgram)),
      property_(connection.atom("_NET_ACTIVE_WINDOW")) {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    program_ = programOf(activeWindow());
    listening_ = connection_.onEvent([this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (change.atom == property_ && change.window == connection_.root()) {
                look_ = loop_.after(Duration::zero(), [this] { look(); });
            }
        }
    });
}

xcb_window_t ActiveWindowWatch::activeWindow() const {
    const auto asked = xcb_get_property(connection_.get(), 0, connection_.root(), property_, XCB_ATOM_WINDOW, 0, 1);
    const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_.get(), asked, nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) < static_cast<int>(sizeof(xcb_window_t))) {
        return XCB_WINDOW_NONE;
    }
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

std::uint32_t ActiveWindowWatch::programOf(xcb_window_t window) const {
    return window & ~xcb_get_setup(connection_.get())->resource_id_mask;
}

void ActiveWindowWatch::look() {
    const auto window = activeWindow();
    connection_.handOutQueued();
    if (!connection_.isAlive() || isOwn_(window)) {
        return;
    }
    const auto program = programOf(window);
    if (std::exchange(program_, program) != program) {
        onOtherProgram_();
    }
}

}  // namespace glintar::platform
