#pragma once

#include "platform/Graphics.h"

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace glintar::platform {

struct TextRun {
    std::string text;
    Font font;
    Color color;
};

/// A picture that stands in a line of text. `offset` moves its bottom left corner from the point on the base line.
struct PictureRun {
    ImagePtr image;
    Point offset;
    std::string description;  ///< for those who cannot see it
};

/// One line of text and pictures.
using AttributedText = std::vector<std::variant<TextRun, PictureRun>>;

struct MenuItem {
    std::string title;
    std::function<void()> action;
    char shortcut = 0;  ///< a letter, pressed with Control in the open menu or a window of ours; 0 for none
    bool isEnabled = true;
    bool isSeparator = false;
};
using Menu = std::vector<MenuItem>;

enum class MouseButton { Left, Right };

/// What the user sees of an item.
struct ItemSight {
    enum class Cover {
        None,       ///< it is seen, at least in part
        Windows,    ///< wholly behind other windows
        FullScreen  ///< wholly behind a window that fills the screen, which covers the bar on purpose
    };

    Cover cover = Cover::None;
    double width = 0;             ///< points; 0 while it is not on screen
    double left = 0;              ///< its left edge on screen
    bool isPlacedByUser = false;  ///< the bar is where the user dragged it
    int leftOut = 0;  ///< pictures at the end of the title (texts are drawn as such) that do not fit on the screen
};

/// One place in the status bar: an image, and a line of text to its right. Shown from the start, empty. It goes when
/// the handle goes. Main thread only.
class StatusItem {
public:
    /// As wide as the bar is high; as wide as its contents; of no width.
    enum class Length { Square, Variable, Collapsed };

    virtual ~StatusItem() = default;
    virtual void setLength(Length length) = 0;
    virtual void setVisible(bool isVisible) = 0;
    virtual void setImage(ImagePtr image) = 0;
    /// `description` is the whole line for those who cannot see it.
    virtual void setTitle(AttributedText title, std::string description) = 0;
    virtual void setToolTip(std::string text) = 0;

    /// A square item has the same menu in the tray. The shortcuts of its menu work; those of other menus do not.
    virtual void setMenu(Menu menu) = 0;
    /// Shows the menu with its top left corner at a point of the item.
    virtual void popUpMenu(Point at) = 0;

    /// On screen; empty while it is not shown.
    [[nodiscard]] virtual Rect frame() const = 0;

    /// What the user sees of the item. Asks the desktop about each of its windows, which takes some tenths of a
    /// millisecond.
    [[nodiscard]] virtual ItemSight sight() const = 0;

    /// A button was let go on the item, without having dragged the bar.
    std::function<void(MouseButton)> onMouseUp;
};

/// The desktop's status bar. Main thread only.
class StatusBar {
public:
    virtual ~StatusBar() = default;

    /// The first item stands at the right end, each next one to the left of it.
    [[nodiscard]] virtual std::unique_ptr<StatusItem> addItem(StatusItem::Length length) = 0;

    /// On screen, with all its items; empty while it is not shown.
    [[nodiscard]] virtual Rect frame() const = 0;

    /// All of the screen that the bar is on.
    [[nodiscard]] virtual Rect screen() const = 0;

    /// Pixels to a point where the bar is.
    [[nodiscard]] virtual double scale() const = 0;

    /// Runs when `scale` has changed.
    std::function<void()> onScaleChanged;
};

}  // namespace glintar::platform
