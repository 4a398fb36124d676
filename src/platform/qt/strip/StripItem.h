#pragma once

#include "platform/StatusBar.h"

#include <QWidget>

#include <vector>

namespace glintar::platform {

class StripPicture;
struct StripLook;

/// One item of the strip: a picture, and to the right of it the pictures that its title is made of.
class StripItem final : public QWidget {
public:
    StripItem(QWidget* strip, const Graphics& graphics, const StripLook& look);

    void setLength(StatusItem::Length length);
    void setShown(bool isShown);
    void setImage(ImagePtr image);
    void setTitle(AttributedText title, const std::string& description);

    /// Draws the texts again, for another scale or appearance.
    void redraw();

    /// How wide all of it is; 0 when it is not shown.
    [[nodiscard]] int neededWidth() const;

    /// Leaves out pictures at the end of the title, each as a whole, until the item fits into `most` points. Returns
    /// how wide it is then.
    int fitInto(int most);
    [[nodiscard]] int leftOut() const { return used_ - fitting_; }

    std::function<void()> onWidthChanged;
    std::function<void(MouseButton)> onMouseUp;

    /// The left button went down at that place of the screen, and moved to another. `onDragged` tells whether the strip
    /// is being dragged; then the button's going up is no click.
    std::function<void(const QPointF& at)> onPressed;
    std::function<bool(const QPointF& at)> onDragged;
    std::function<void()> onDropped;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    struct Placed {
        StripPicture* widget;
        int x = 0;  ///< in the title
    };

    [[nodiscard]] int widthWith(int title) const;
    void compose();
    void arrange();
    void placePictures();

    const Graphics& graphics_;
    const StripLook& look_;
    StatusItem::Length length_ = StatusItem::Length::Variable;
    bool isShown_ = true;
    bool isDragged_ = false;
    AttributedText title_;
    StripPicture* image_;
    std::vector<Placed> pictures_;  ///< of the title, from the left; those without a picture are spare ones
    int used_ = 0;                  ///< pictures, of which so many fit
    int fitting_ = 0;
    int titleWidth_ = 0;
};

}  // namespace glintar::platform
