#pragma once

#include "platform/Geometry.h"
#include "platform/Overlay.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace glintar::platform {

/// The content of a window. A view is made from a model of the core; the core passes it on and knows nothing more of
/// it. Main thread only.
class View {
public:
    virtual ~View() = default;
};

/// Makes the view of a model, which outlives it.
template <class Model>
using ViewFactory = std::function<std::unique_ptr<View>(Model&)>;

/// A window that the user works with: it takes the focus and stays above normal windows. Not on screen until it is
/// ordered to the front; closing takes it off the screen and keeps it. Main thread only.
class Window {
public:
    enum class Frame {
        Titled,     ///< with title and close button, sized by its content; movable by its background too
        Borderless  ///< nothing but its content, translucent where a compositor owns the screen; movable by its
                    ///< background
    };

    virtual ~Window() = default;

    /// Replaces the content. The window keeps its place.
    virtual void setView(std::unique_ptr<View> view) = 0;

    /// The size at which nothing of the content is cut.
    [[nodiscard]] virtual Size fittingSize() const = 0;

    /// On screen, without what the window manager adds. A titled window takes its size from its content.
    virtual void setFrame(const Rect& frame) = 0;
    [[nodiscard]] virtual Rect frame() const = 0;
    /// In the middle of the screen that the user works on, at the next showing or now.
    virtual void center() = 0;

    /// Shows the window, restored if it was minimized, with the focus.
    virtual void makeKeyAndOrderFront() = 0;
    virtual void close() = 0;
    [[nodiscard]] virtual bool isVisible() const = 0;

    /// Whether what lies behind the window shows through where its content is not opaque. True for a borderless window
    /// under a compositor. Otherwise its content needs square corners.
    [[nodiscard]] virtual bool isTranslucent() const = 0;

    /// Runs when a window that was shown has been closed, by `close`, Escape or the window manager. It may destroy the
    /// window.
    std::function<void()> onClosed;
    /// Runs when `fittingSize` has changed.
    std::function<void()> onFittingSizeChanged;
    /// Runs when the user moved the window.
    std::function<void()> onMoved;
    /// Runs when the window was minimized or restored.
    std::function<void()> onVisibilityChanged;
    /// Runs when screens came, went or changed, or `isTranslucent` has changed.
    std::function<void()> onSurroundingsChanged;
};

/// A question to the user. It is modal to the program's own windows; timers, refreshes and drawing go on.
struct AlertText {
    std::string title;
    std::string text;
    std::vector<std::string> buttons;  ///< in their order; Escape means the last
};

/// An alert on screen; destroying it takes it away, without an answer.
class Alert {
public:
    Alert() = default;
    Alert(const Alert&) = delete;
    Alert& operator=(const Alert&) = delete;
    virtual ~Alert() = default;
};

/// Makes windows, alerts and notices. Main thread only.
class WindowServer {
public:
    virtual ~WindowServer() = default;

    /// `title` is what window rules, window managers and screen readers go by.
    [[nodiscard]] virtual std::unique_ptr<Window> makeWindow(Window::Frame frame, std::string title) = 0;
    [[nodiscard]] virtual std::unique_ptr<Overlay> makeOverlay(std::string title) = 0;

    /// Shows a warning, which takes the focus once. `onAnswer` runs once, with the place of the button; it may destroy
    /// the alert.
    [[nodiscard]] virtual std::unique_ptr<Alert> showAlert(AlertText text,
                                                           std::function<void(std::size_t button)> onAnswer) = 0;

    /// Whether windows can be translucent.
    [[nodiscard]] virtual bool hasCompositor() const = 0;

    /// The screen that is nearest to the middle of the rectangle, without the desktop's panels.
    [[nodiscard]] virtual Rect visibleFrame(const Rect& near) const = 0;

    /// A notice by the desktop that passes by itself, or a line on the console where the desktop has none.
    virtual void notify(std::string title, std::string text) = 0;
};

/// What the user copies. Main thread only.
class Clipboard {
public:
    virtual ~Clipboard() = default;
    virtual void setText(std::string text) = 0;
};

}  // namespace glintar::platform
