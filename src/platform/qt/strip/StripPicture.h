#pragma once

#include "platform/Graphics.h"

#include <QWidget>

namespace glintar::platform {

struct StripLook;

/// One picture in the strip, shown pixel by pixel. It paints what is behind it too, so that nothing else is painted
/// when it changes. The mouse goes to the item it is part of.
class StripPicture final : public QWidget {
public:
    StripPicture(QWidget* parent, const StripLook& look);

    /// `bottom` is how far the picture is above the strip's lower end. The widget is as high as the strip.
    void setPicture(ImagePtr picture, double bottom);
    [[nodiscard]] const ImagePtr& picture() const { return picture_; }

    /// The width that the picture takes.
    [[nodiscard]] int neededWidth() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const StripLook& look_;
    ImagePtr picture_;
    double bottom_ = 0;
};

}  // namespace glintar::platform
