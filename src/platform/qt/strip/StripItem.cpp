#include "platform/qt/strip/StripItem.h"

#include "platform/qt/strip/StripLook.h"
#include "platform/qt/strip/StripPicture.h"
#include "platform/qt/strip/StripText.h"

#include <QMouseEvent>

#include <algorithm>
#include <utility>

namespace glintar::platform {

namespace {

constexpr int kMargin = 4;  // at the ends of an item, and between its image and its title

}  // namespace

StripItem::StripItem(QWidget* strip, const Graphics& graphics, const StripLook& look)
    : QWidget(strip), graphics_(graphics), look_(look), image_(new StripPicture(this, look)) {
    image_->hide();
}

void StripItem::setLength(StatusItem::Length length) {
    if (length_ != length) {
        length_ = length;
        arrange();
    }
}

void StripItem::setShown(bool isShown) {
    if (isShown_ != isShown) {
        isShown_ = isShown;
        arrange();
    }
}

void StripItem::setImage(ImagePtr image) {
    const double bottom = image ? (StripLook::kHeight - image->size().height) / 2 : 0;
    const int before = image_->neededWidth();
    image_->setPicture(std::move(image), bottom);
    if (image_->neededWidth() != before) {
        arrange();
    }
}

void StripItem::setTitle(AttributedText title, const std::string& description) {
    title_ = std::move(title);
    setAccessibleName(QString::fromStdString(description));
    compose();
    arrange();
}

void StripItem::redraw() {
    compose();
    arrange();
    update();
    image_->update();
    for (const auto& placed : pictures_) {
        placed.widget->update();
    }
}

int StripItem::neededWidth() const {
    return widthWith(titleWidth_);
}

int StripItem::widthWith(int title) const {
    if (!isShown_ || length_ == StatusItem::Length::Collapsed) {
        return 0;
    }
    if (length_ == StatusItem::Length::Square) {
        return StripLook::kHeight;
    }
    const int image = image_->neededWidth();
    const int gap = image > 0 && title > 0 ? kMargin : 0;
    return image + title == 0 ? 0 : kMargin + image + gap + title + kMargin;
}

void StripItem::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        isDragged_ = false;
        onPressed(event->globalPosition());
    }
}

void StripItem::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) {
        isDragged_ = onDragged(event->globalPosition());
    }
}

void StripItem::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && std::exchange(isDragged_, false)) {
        onDropped();
        return;
    }
    const auto tell = onMouseUp;  // it may take the item away
    if (tell && rect().contains(event->position().toPoint())) {
        if (event->button() == Qt::LeftButton) {
            tell(MouseButton::Left);
        } else if (event->button() == Qt::RightButton) {
            tell(MouseButton::Right);
        }
    }
}

/// Pictures keep their widgets, so that those that are still the same are not painted again.
void StripItem::compose() {
    used_ = 0;
    double x = 0;
    for (const TitlePart& part : titleParts(title_, graphics_, devicePixelRatio(), look_.appearance)) {
        if (part.picture) {
            x = roundedUp(x);
            if (used_ == std::ssize(pictures_)) {
                pictures_.push_back({new StripPicture(this, look_)});
            }
            Placed& placed = pictures_[static_cast<std::size_t>(used_++)];
            placed.x = static_cast<int>(x);
            placed.widget->setPicture(part.picture, part.bottom);
            placed.widget->setAccessibleName(QString::fromStdString(part.description));
        }
        x += part.width;
    }
    titleWidth_ = used_ == 0 ? 0 : roundedUp(x);
    fitting_ = used_;
    for (auto spare = pictures_.begin() + used_; spare != pictures_.end(); ++spare) {
        spare->widget->setPicture(nullptr, 0);
    }
}

void StripItem::arrange() {
    const int image = image_->neededWidth();
    const bool isSquare = length_ == StatusItem::Length::Square;
    image_->setGeometry(isSquare ? (StripLook::kHeight - image) / 2 : kMargin, 0, image, StripLook::kHeight);
    image_->setVisible(image > 0);
    placePictures();
    onWidthChanged();
}

void StripItem::placePictures() {
    const int image = image_->neededWidth();
    const int start = kMargin + (image > 0 ? image + kMargin : 0);
    for (int index = 0; const auto& [widget, x] : pictures_) {
        widget->setGeometry(start + x, 0, widget->neededWidth(), StripLook::kHeight);
        widget->setVisible(index++ < fitting_);
    }
}

int StripItem::fitInto(int most) {
    int width = neededWidth();
    int fitting = used_;
    while (width > most && fitting > 0) {
        --fitting;
        const auto* const last = fitting > 0 ? &pictures_[static_cast<std::size_t>(fitting - 1)] : nullptr;
        width = widthWith(last ? last->x + last->widget->neededWidth() : 0);
    }
    if (std::exchange(fitting_, fitting) != fitting) {
        placePictures();
    }
    return width;
}

}  // namespace glintar::platform
