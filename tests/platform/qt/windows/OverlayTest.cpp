#include "WindowsDesktop.h"

namespace glintar::platform {

namespace {

using test::Display;
using test::listedPrograms;
using test::OtherWindow;

TEST_F(WindowsDesktop, ThePanelLiesAboveEverythingAndIsInNobodysWay) {
    display.startManager(Display::Manager::Xfwm4);
    display.startCompositor();
    ASSERT_TRUE(soon([&] { return compositor.isRunning(); }));
    OtherWindow beneath(OtherWindow::Kind::Managed, kYellow, {100, 100, 600, 400});
    const auto focused = focus();
    const auto programs = listedPrograms();

    const auto panel = showPanel(300, 200);
    EXPECT_TRUE(comesToShow(302, 202, kRed));
    EXPECT_TRUE(comesToShow(338, 218, {102, 102, 153}));
    EXPECT_TRUE(comesToShow(298, 198, {204, 204, 0})) << "the shadow";

    const auto click = [&] { display.input({"mousemove", "320", "205", "click", "1"}); };
    EXPECT_TRUE(test::eventually([&] { return beneath.wasPressed(); }, click)) << "clicks must reach what lies beneath";
    EXPECT_EQ(focus(), focused);
    EXPECT_EQ(listedPrograms(), programs) << "task bars must not know of the panel";

    const OtherWindow later(OtherWindow::Kind::Managed, kBlack, {150, 120, 400, 300});
    EXPECT_TRUE(comesToShow(302, 202, kRed)) << "a window that is opened later must not cover the panel";
    const OtherWindow menu(OtherWindow::Kind::Unmanaged, {0, 255, 0}, {250, 190, 100, 100});
    EXPECT_TRUE(comesToShow(302, 202, kRed)) << "nor must a menu";
    {
        const OtherWindow film(OtherWindow::Kind::FullScreen, {1, 2, 3}, {0, 0, 1280, 800});
        EXPECT_TRUE(comesToShow(302, 202, kRed)) << "nor one that fills the screen";
    }

    panel->setFrameOrigin({-20, 785});
    EXPECT_TRUE(comesToShow(2, 2, kRed));
    EXPECT_EQ(seenPanel().frame.x, -24);
    EXPECT_EQ(seenPanel().frame.y, -9);
    panel->orderOut();
    EXPECT_TRUE(comesToShow(2, 2, kWhite));
}

TEST_F(WindowsDesktop, ThePanelFollowsACompositorThatComesAndGoes) {
    const auto panel = showPanel(300, 200);
    int told = 0;
    panel->onSurroundingsChanged = [&] { ++told; };
    EXPECT_TRUE(comesToShow(338, 218, {0, 0, 255}));
    panel->setAlpha(0);
    EXPECT_TRUE(comesToShow(302, 202, kWhite)) << "without a compositor, no opacity means hidden";

    display.startCompositor();
    ASSERT_TRUE(soon([&] { return told == 1; }));
    EXPECT_TRUE(panel->isTranslucent());
    panel->setAlpha(0.6);
    EXPECT_TRUE(comesToShow(302, 202, {255, 102, 102}));
    {
        const OtherWindow lock(OtherWindow::Kind::Unmanaged, kBlack, {0, 0, 1280, 800});
        const OtherWindow prompt(OtherWindow::Kind::Unmanaged, kYellow, {500, 300, 100, 100});
        runLoop(300);
        EXPECT_EQ(display.pixel(302, 202), kBlack) << "what the compositor paints on is not what locks";
    }
    panel->setAlpha(1);
    EXPECT_TRUE(comesToShow(298, 198, {204, 204, 204}));

    display.stopCompositor();
    ASSERT_TRUE(soon([&] { return told == 2; }));
    EXPECT_FALSE(panel->isTranslucent());
    EXPECT_TRUE(comesToShow(298, 198, kWhite));
    EXPECT_TRUE(comesToShow(338, 218, {0, 0, 255}));
}

TEST_F(WindowsDesktop, ThePanelTakesTheScaleOfTheScreenItIsOn) {
    display.split(640);
    ASSERT_TRUE(soon([&] { return screens.map().screenAt({700, 700}).scale == 2; }));
    auto panel = showPanel(600, 100);
    int told = 0;
    panel->onSurroundingsChanged = [&] { ++told; };
    EXPECT_TRUE(comesToShow(602, 102, kRed));
    EXPECT_EQ(panel->scale(), 1);

    // 50 points to the right of the second screen's edge and 30 below its top are 100 and 60 pixels.
    panel->setFrameOrigin({690, 750});
    EXPECT_EQ(panel->scale(), 2);
    EXPECT_TRUE(comesToShow(818, 62, kRed));
    EXPECT_EQ(seenPanel().frame.x, 740 - 8);
    EXPECT_EQ(seenPanel().frame.width, 96);
    EXPECT_EQ(told, 1);

    display.input({"mousemove", "740", "100"});
    QtPointer pointer(*connection, screens);
    EXPECT_EQ(pointer.position(), (Point{690, 750}));

    {
        const OtherWindow lock(OtherWindow::Kind::Unmanaged, kBlack, {640, 0, 640, 800});
        const OtherWindow prompt(OtherWindow::Kind::Unmanaged, kYellow, {900, 300, 100, 100});
        runLoop(300);
        EXPECT_EQ(display.pixel(818, 62), kBlack) << "this screen is locked";
    }
    EXPECT_TRUE(comesToShow(818, 62, kRed));

    display.unsplit();
    EXPECT_TRUE(soon([&] { return panel->scale() == 1 && told == 2; }));
    EXPECT_EQ(seenPanel().frame.width, 48);
    EXPECT_EQ(pointer.position(), (Point{740, 700}));
}

TEST_F(WindowsDesktop, ThePanelLeavesALockedScreenLockedAndQuarrelsWithNobody) {
    const auto panel = showPanel(300, 200);
    EXPECT_TRUE(comesToShow(302, 202, kRed));
    const xcb_rectangle_t everything{0, 0, 1280, 800};
    {
        auto lock = std::make_unique<OtherWindow>(OtherWindow::Kind::Unmanaged, kBlack, everything);
        const OtherWindow prompt(OtherWindow::Kind::Unmanaged, kYellow, {320, 190, 100, 100});
        runLoop(300);
        EXPECT_EQ(display.pixel(302, 202), kBlack);
        panel->orderOut();
        panel->orderFront();
        runLoop(300);
        EXPECT_EQ(display.pixel(302, 202), kBlack) << "nor may it come back above it";

        lock->hide();
        EXPECT_TRUE(comesToShow(302, 202, kRed));
        EXPECT_TRUE(comesToShow(322, 202, kRed)) << "it makes up for what it could not cover";
        panel->orderFront();
        lock->show();  // as it lies, which is beneath
        EXPECT_TRUE(comesToShow(302, 202, kBlack));
        lock.reset();
        EXPECT_TRUE(comesToShow(302, 202, kRed));
    }
    {
        const OtherWindow wallpaper(OtherWindow::Kind::Unmanaged, kBlack, everything);
        wallpaper.lower();
        const OtherWindow menu(OtherWindow::Kind::Unmanaged, kYellow, {250, 190, 100, 100});
        EXPECT_TRUE(comesToShow(302, 202, kRed)) << "what lies at the bottom locks nothing";
    }
    int raised = 0;
    const auto rival = XcbConnection::open();
    const auto window = seenPanel().id;
    rival->selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    const xcb_window_t other = xcb_generate_id(rival->get());
    xcb_create_window(rival->get(), XCB_COPY_FROM_PARENT, other, rival->root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto quarrel = rival->onEvent([&](const xcb_generic_event_t& event) {
        if (event.response_type == XCB_CONFIGURE_NOTIFY &&
            reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == window) {
            ++raised;
            const std::uint32_t above = XCB_STACK_MODE_ABOVE;
            xcb_configure_window(rival->get(), other, XCB_CONFIG_WINDOW_STACK_MODE, &above);
            rival->flush();
        }
    });
    const XcbReader reading(*rival);
    rival->flush();
    runLoop(1000);
    EXPECT_GE(raised, 5);
    EXPECT_LE(raised, 11) << "at most ten times a second";
}

}  // namespace

}  // namespace glintar::platform
