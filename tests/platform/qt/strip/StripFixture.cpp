#include "platform/qt/strip/StripFixture.h"

#include <QApplication>

#include <fstream>

namespace glintar::test {

using platform::Canvas;
using platform::Color;
using platform::Rect;
using platform::StatusItem;

bool soon(const std::function<bool()>& condition) {
    return eventually(condition, [] {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        settle();
    });
}

void settle() {
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        outputOf({"xprop", "-root", "_NET_SUPPORTED"});  // what it is answered comes after what was asked before
    }
}

DesktopSettings::DesktopSettings() {
    write(1);
    daemon_ = Child({"xsettingsd", "-c", file()});
    EXPECT_TRUE(eventually([] { return outputOf({"dump_xsettings"}).contains("Xft/DPI"); }));
}

void DesktopSettings::write(double scale) const {
    std::ofstream(file()) << "Xft/DPI " << static_cast<int>(scale * 96 * 1024) << '\n';
}

StripFixture::StripFixture() = default;

StripFixture::~StripFixture() {
    stop();
    display().paintWall({0, 0, 0});
    display().stopCompositor();
    display().stopManager();
    display().unsplit();
    settings().setScale(1);
    settle();
}

void StripFixture::start() {
    stop();
    bar = std::make_unique<platform::QtStatusBar>(platform::QtStatusBar::Surroundings{
        .loop = loop,
        .connection = *connection,
        .compositor = compositor,
        .screens = screens,
        .session = session,
        .graphics = graphics,
        .events = events,
        .notifications = notifications,
        .preferences = preferences,
    });
    icon = bar->addItem(StatusItem::Length::Square);
    icon->setImage(graphics.draw({28, 24}, bar->scale(), [&](Canvas& canvas) {
        canvas.fillRounded({4, 0, 20, 24}, 0, {.red = 1, .green = 0.5, .blue = 0});
    }));
    line = bar->addItem(StatusItem::Length::Variable);
}

void StripFixture::stop() {
    line.reset();
    icon.reset();
    bar.reset();
    settle();
}

platform::ImagePtr StripFixture::pill(double width, const Color& fill) const {
    const double scale = bar->scale();
    return graphics.draw({width, 24}, scale, [&](Canvas& canvas) {
        canvas.fillRounded({0, 0, width, 24}, 0, Color::white(0));
        canvas.fillRounded({1 / scale, 1 / scale, width - 2 / scale, 24 - 2 / scale}, 0, fill);
    });
}

void StripFixture::showPills() {
    const platform::TextRun gap{.text = "   ", .font = {.size = 11}, .color = {}};
    line->setTitle({platform::PictureRun{pill(100, {.red = 1}), {0, -7.5}, "Bitcoin"}, gap,
                    platform::PictureRun{pill(80, {.red = 0, .green = 0, .blue = 1}), {0, -7.5}, "Ether"}},
                   "Bitcoin, Ether");
}

void StripFixture::showText(const std::string& text) {
    line->setTitle({platform::TextRun{.text = text, .font = {.size = 12}, .color = Color::white(0.4)}}, text);
}

bool StripFixture::standsAt(const Rect& pixels) const {
    const auto window = seen();
    return window && window->frame == pixels;
}

bool StripFixture::comesToEndAt(double right, double top) const {
    return soon([&] {
        const auto window = seen();
        return window && window->frame.right() == right && window->frame.y == top;
    });
}

std::string StripFixture::property(const std::string& name) const {
    return outputOf({"xprop", "-name", "Glintar prices", name});
}

}  // namespace glintar::test

/// Of the tray's watcher, whose description Qt makes twice and frees once.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libQt6DBus.so\n";
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    glintar::test::Display display;
    glintar::test::theDisplay = &display;
    glintar::test::DesktopSettings settings;
    glintar::test::theSettings = &settings;
    qputenv("QT_SCREEN_SCALE_FACTORS", "RIGHT=2");
    QApplication::setDesktopSettingsAware(false);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
