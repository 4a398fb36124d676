#include "platform/qt/events/ActiveWindowWatch.h"
#include "platform/virtual/VirtualRunLoop.h"
#include "support/Display.h"

#include <gtest/gtest.h>

namespace glintar::platform {
namespace {

/// A program with its windows, which also plays the window manager.
struct Program {
    std::unique_ptr<XcbConnection> connection = XcbConnection::open();
    xcb_window_t window() const {
        const auto id = xcb_generate_id(connection->get());
        xcb_create_window(connection->get(), XCB_COPY_FROM_PARENT, id, connection->root(), 0, 0, 10, 10, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        return id;
    }
};

TEST(ActiveWindowWatchTest, TellsWhenTheUserTurnsToAnotherProgram) {
    const test::Display display("640x480x24", test::Display::Bus::None);
    const Program ours, first, second;
    const auto own = ours.window();
    const auto a1 = first.window(), a2 = first.window(), b = second.window();
    VirtualRunLoop loop;
    int notices = 0;
    const auto activate = [&](xcb_window_t window, const char* property = "_NET_ACTIVE_WINDOW") {
        xcb_change_property(second.connection->get(), XCB_PROP_MODE_REPLACE, second.connection->root(),
                            second.connection->atom(property), XCB_ATOM_WINDOW, 32, 1, &window);
        // An answer says that the server has dealt with the change, and told of it.
        std::free(xcb_get_input_focus_reply(second.connection->get(), xcb_get_input_focus(second.connection->get()),
                                            nullptr));
    };
    activate(a1);
    const ActiveWindowWatch watch(
        loop, *ours.connection, [&](xcb_window_t window) { return window == own; }, [&] { ++notices; });
    ours.connection->selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);  // another listener's
    const auto noticesAfter = [&](xcb_window_t window, const char* property = "_NET_ACTIVE_WINDOW") {
        activate(window, property);
        ours.connection->readEvents();
        loop.settle();
        return std::exchange(notices, 0);
    };
    EXPECT_EQ(noticesAfter(a1), 0) << "it was active at the start";
    EXPECT_EQ(noticesAfter(b), 1);
    EXPECT_EQ(noticesAfter(a1), 1);
    EXPECT_EQ(noticesAfter(a2), 0) << "another window of the same program";
    EXPECT_EQ(noticesAfter(own), 0) << "a window of ours";
    EXPECT_EQ(noticesAfter(a1), 0) << "and back";
    EXPECT_EQ(noticesAfter(b, "_NET_SOMETHING_ELSE"), 0);
    EXPECT_EQ(noticesAfter(XCB_WINDOW_NONE), 1) << "the desktop, or a window of Wayland's";
}

}  // namespace
}  // namespace glintar::platform
