#include "WindowsDesktop.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

namespace glintar::platform {

void runLoop(int milliseconds) {
    QEventLoop waiting;
    QTimer::singleShot(milliseconds, &waiting, &QEventLoop::quit);
    waiting.exec();
}

WindowsDesktop::WindowsDesktop() {
    display.paintWall(kWhite);
    display.input({"mousemove", "10", "790"});
}

WindowsDesktop::~WindowsDesktop() {
    display.stopCompositor();
    display.stopManager();
    runLoop();
}

ImagePtr WindowsDesktop::picture() {
    QImage pixels(48, 28, QImage::Format_ARGB32_Premultiplied);
    pixels.fill(QColor(0, 0, 0, 51));
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 40; ++x) {
            pixels.setPixelColor(x + 4, y + 4, y < 10 ? QColor(255, 0, 0) : QColor(0, 0, 255, 153));
        }
    }
    return std::make_shared<PixelImage>(pixels, Size{48, 28}, 1);
}

std::unique_ptr<Overlay> WindowsDesktop::showPanel(int x, int y) {
    auto panel = server.makeOverlay("Panel");
    panel->setPicture(picture(), kMargin);
    panel->setFrame({double(x), 800.0 - y - 20, 40, 20});
    panel->orderFront();
    return panel;
}

bool WindowsDesktop::comesToShow(int x, int y, const Pixel& color) {
    const bool shows = soon([&] { return display.pixel(x, y) == color; });
    EXPECT_EQ(display.pixel(x, y), color) << "at " << x << ", " << y;
    return shows;
}

xcb_window_t WindowsDesktop::focus() {
    const XcbOwned<xcb_get_input_focus_reply_t> has(
        xcb_get_input_focus_reply(connection->get(), xcb_get_input_focus(connection->get()), nullptr));
    return has ? has->focus : xcb_window_t{XCB_NONE};
}

}  // namespace glintar::platform

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    glintar::test::Display display;
    glintar::platform::WindowsDesktop::screen = &display;
    qputenv("QT_SCREEN_SCALE_FACTORS", "RIGHT=2");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
