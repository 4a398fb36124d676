#include "platform/qt/strip/StripPicture.h"

#include "platform/qt/graphics/QtImage.h"
#include "platform/qt/strip/StripLook.h"

#include <QPainter>

namespace glintar::platform {

StripPicture::StripPicture(QWidget* parent, const StripLook& look) : QWidget(parent), look_(look) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void StripPicture::setPicture(ImagePtr picture, double bottom) {
    if (picture != picture_ || bottom != bottom_) {
        picture_ = std::move(picture);
        bottom_ = bottom;
        update();
    }
}

int StripPicture::neededWidth() const {
    return picture_ ? roundedUp(picture_->size().width) : 0;
}

void StripPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), look_.background());
    if (!picture_) {
        return;
    }
    const Size size = picture_->size();
    const QRectF place(0, height() - bottom_ - size.height, size.width, size.height);
    const QTransform toPixels = painter.deviceTransform();
    const auto placed = static_cast<const QtImage&>(*picture_).placed(toPixels.mapRect(place));
    painter.setWorldTransform(toPixels.inverted());
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawImage(QRect(placed.at, placed.pixels.size()), placed.pixels);
}

}  // namespace glintar::platform
