#pragma once

#include "platform/qt/XcbReader.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/strip/QtStatusBar.h"
#include "platform/qt/windows/QtScreens.h"
#include "platform/qtcore/QtRunLoop.h"
#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualStores.h"
#include "support/Display.h"
#include "support/FolderBundle.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <gtest/gtest.h>
#include <signal.h>

namespace glintar::test {

inline constexpr Pixel kRed{255, 0, 0}, kBlue{0, 0, 255}, kBlack{0, 0, 0}, kOrange{255, 128, 0};

/// The one screen of the test program, on which main made the QApplication.
inline Display* theDisplay = nullptr;
inline Display& display() {
    return *theDisplay;
}

/// A settings daemon with the one setting that most desktops have.
class DesktopSettings {
public:
    DesktopSettings();
    void setScale(double scale) const {
        write(scale);
        daemon_.signal(SIGHUP);
    }

private:
    void write(double scale) const;
    [[nodiscard]] std::string file() const { return folder_.path() / "settings"; }
    TemporaryFolder folder_;
    Child daemon_;
};

/// That of the screen: Qt looks for it only when it starts.
inline DesktopSettings* theSettings = nullptr;
inline DesktopSettings& settings() {
    return *theSettings;
}

/// Runs Qt's loop until the condition holds; false when it does not within some seconds.
[[nodiscard]] bool soon(const std::function<bool()>& condition);

/// Lets Qt and the X server finish what has been asked of them.
void settle();

/// A status bar as the program has it, with a price line of two pills and an icon.
class StripFixture : public testing::Test {
protected:
    StripFixture();
    ~StripFixture() override;

    /// Makes the bar and its two items; what was there before goes.
    void start();
    void stop();

    /// A pill of one colour with a black frame of a pixel.
    platform::ImagePtr pill(double width, const platform::Color& fill) const;
    void showPills();
    void showText(const std::string& text);

    /// The strip's window; none while it is not shown.
    static std::optional<SeenWindow> seen() { return Display::window("Glintar prices"); }
    bool standsAt(const platform::Rect& pixels) const;

    /// Whether the top right corner of the strip is soon there, in pixels from the top left.
    [[nodiscard]] bool comesToEndAt(double right, double top) const;

    /// Of the strip's window, as xprop prints it.
    std::string property(const std::string& name) const;

    platform::VirtualPreferences preferences;
    platform::NotificationCenter notifications;
    platform::VirtualEvents events{notifications};
    platform::QtRunLoop loop;
    FolderBundle bundle;
    platform::QtGraphics graphics{bundle};
    std::unique_ptr<platform::XcbConnection> connection = platform::XcbConnection::open();
    platform::XcbReader reader{*connection};
    platform::CompositorWatch compositor{*connection};
    platform::QtScreens screens{*connection, loop};
    std::optional<QDBusConnection> session;
    std::unique_ptr<platform::QtStatusBar> bar;
    std::unique_ptr<platform::StatusItem> icon;
    std::unique_ptr<platform::StatusItem> line;
};

}  // namespace glintar::test
