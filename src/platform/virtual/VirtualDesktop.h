#pragma once

#include "platform/Desktop.h"
#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"
#include "platform/Pointer.h"
#include "platform/StatusBar.h"
#include "platform/Window.h"
#include "platform/virtual/VirtualGraphics.h"
#include "platform/virtual/VirtualWorkspace.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace glintar::platform {

/// What a status item was last told. Outlives the item, so that a test can look at it.
struct ItemState {
    StatusItem* item = nullptr;  ///< null once the item is gone
    StatusItem::Length length = StatusItem::Length::Variable;
    bool isVisible = true;
    ImagePtr image;
    int imagesSet = 0;
    AttributedText title;
    int titlesSet = 0;
    std::string description;
    std::string toolTip;
    Menu menu;
    std::optional<Point> menuShownAt;
    Rect frame;
    ItemSight sight{.width = 300, .left = 900};
};

class VirtualStatusBar final : public StatusBar {
public:
    std::unique_ptr<StatusItem> addItem(StatusItem::Length length) override;
    Rect frame() const override { return onScreen; }
    Rect screen() const override { return itsScreen; }
    double scale() const override { return pixelsPerPoint; }
    void setScale(double scale);

    double pixelsPerPoint = 1;
    Rect onScreen{900, 776, 380, 24};
    Rect itsScreen{0, 0, 1280, 800};
    std::vector<std::shared_ptr<ItemState>> items;  ///< in the order in which they were added
};

class VirtualEvents final : public DesktopEvents {
public:
    explicit VirtualEvents(NotificationCenter& notifications) : notifications_(notifications) {}
    Appearance appearance() const override { return appearance_; }
    void setAppearance(Appearance appearance);

private:
    NotificationCenter& notifications_;
    Appearance appearance_ = Appearance::Light;
};

class VirtualPointer final : public Pointer {
public:
    std::optional<Point> position() override {
        ++asked;
        return isSeen ? at : std::nullopt;
    }
    bool isSeenEverywhere() const override { return isSeen; }

    std::optional<Point> at = Point{};
    bool isSeen = true;
    int asked = 0;
};

/// Keeps what it was told.
class VirtualOverlay final : public Overlay {
public:
    void setPicture(ImagePtr newPicture, double newMargin) override;
    void setFrame(const Rect& frame) override { frame_ = frame; }
    void setFrameOrigin(const Point& origin) override;
    Rect frame() const override { return frame_; }
    void setAlpha(double alpha) override { alpha_ = alpha; }
    double alpha() const override { return alpha_; }
    void orderFront() override;
    void orderOut() override { isShown_ = false; }
    bool isShown() const override { return isShown_; }
    double scale() const override { return scaleAt ? scaleAt(frame_) : pixelsPerPoint; }
    bool isTranslucent() const override { return hasCompositor; }

    std::string title;
    ImagePtr picture;
    double margin = 0;
    int picturesSet = 0;
    int moves = 0;
    int ordersFront = 0;
    double pixelsPerPoint = 1;
    std::function<double(const Rect&)> scaleAt;  ///< in place of it, where there are several screens
    Rect frameWhenShown;                         ///< at the last order to the front
    ImagePtr pictureWhenShown;
    bool hasCompositor = true;

private:
    Rect frame_;
    double alpha_ = 1;
    bool isShown_ = false;
};

/// What a window was last told. Outlives the window, so that a test can look at it.
struct WindowState {
    Window* window = nullptr;  ///< null once the window is gone
    Window::Frame kind = Window::Frame::Titled;
    std::string title;
    Size fittingSize{400, 200};
    Rect frame;
    bool isVisible = false;
    bool isCentered = false;
    bool isTranslucent = true;
    int viewsSet = 0;
    int ordersFront = 0;

    /// The user closes the window.
    void close() { window->close(); }
};

/// An alert and what became of it.
struct AlertState {
    AlertText text;
    std::function<void(std::size_t)> onAnswer;
    bool isShown = true;  ///< until it is answered or taken away

    /// The user presses the button.
    void answer(std::size_t button);
};

class VirtualClipboard final : public Clipboard {
public:
    void setText(std::string copied) override { text = std::move(copied); }
    std::string text;
};

class VirtualWindowServer final : public WindowServer {
public:
    std::unique_ptr<Window> makeWindow(Window::Frame frame, std::string title) override;
    std::unique_ptr<Overlay> makeOverlay(std::string title) override;
    std::unique_ptr<Alert> showAlert(AlertText text, std::function<void(std::size_t)> onAnswer) override;
    bool hasCompositor() const override { return compositor; }
    Rect visibleFrame(const Rect&) const override { return screenWithoutPanels; }
    void notify(std::string title, std::string text) override;

    std::vector<VirtualOverlay*> overlays;  ///< all that were made; the test knows which are still there
    std::vector<std::shared_ptr<WindowState>> windows;
    std::vector<std::shared_ptr<AlertState>> alerts;
    bool compositor = true;
    Rect screenWithoutPanels{0, 0, 1280, 800};
    std::vector<std::pair<std::string, std::string>> notices;
};

/// A screen, a status bar and a pointer in memory, for tests.
class VirtualDesktop {
public:
    explicit VirtualDesktop(NotificationCenter& notifications) : events(notifications) {}
    [[nodiscard]] Desktop& desktop() { return desktop_; }

    VirtualGraphics graphics;
    VirtualEvents events;
    VirtualStatusBar statusBar;
    VirtualPointer pointer;
    VirtualWindowServer windows;
    VirtualClipboard clipboard;
    VirtualWorkspace workspace;
    VirtualLoginItem loginItem;

private:
    Desktop desktop_{graphics, events, statusBar, pointer, windows, clipboard, workspace, loginItem};
};

}  // namespace glintar::platform
