#include "platform/qt/events/ActiveWindowWatch.h"

namespace glintar::platform {

ActiveWindowWatch::ActiveWindowWatch(RunLoop& loop, XcbConnection& connection, std::function<bool(xcb_window_t)> isOwn,
                                     std::function<void()> onOtherProgram)
    : connection_(connection), isOwn_(std::move(isOwn)), onOtherProgram_(std::move(onOtherProgram)) {
    changed_ = connection_.onRootProperty("_NET_ACTIVE_WINDOW",
                                          [this, &loop] { look_ = loop.after(Duration::zero(), [this] { look(); }); });
    program_ = programOf(activeWindow());
}

xcb_window_t ActiveWindowWatch::activeWindow() const {
    const auto window = connection_.property(connection_.root(), "_NET_ACTIVE_WINDOW", 1);
    return window.empty() ? xcb_window_t{XCB_WINDOW_NONE} : window.front();
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
