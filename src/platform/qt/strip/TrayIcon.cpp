#include "platform/qt/strip/TrayIcon.h"

#include "platform/qt/graphics/QtImage.h"
#include "platform/qt/strip/ItemMenu.h"

#include <QIcon>
#include <QPainter>

#include <algorithm>

namespace glintar::platform {

namespace {

/// The part of the picture that something is drawn on. A tray gives every icon the same square, so empty margins would
/// make it smaller than its neighbours.
QRect drawnPart(const QImage& pixels) {
    QRect part;
    for (int y = 0; y < pixels.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            if (qAlpha(line[x]) != 0) {
                part |= QRect(x, y, 1, 1);
            }
        }
    }
    return part;
}

QPixmap squareOf(const Image& image, int side) {
    const Size size = image.size();
    // Twice as many pixels as the whole picture would need, for the margins that are cut off.
    const double scale = 2 * side / std::max({size.width, size.height, 1.0});
    auto pixels = pixelsAt(image, size, scale).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    pixels.setDevicePixelRatio(1);
    pixels = pixels.copy(drawnPart(pixels)).scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPixmap square(side, side);
    square.fill(Qt::transparent);
    QPainter(&square).drawImage((side - pixels.width()) / 2, (side - pixels.height()) / 2, pixels);
    return square;
}

QIcon iconOf(const ImagePtr& image) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48}) {
        if (image) {
            icon.addPixmap(squareOf(*image, side));
        }
    }
    return icon;
}

}  // namespace

TrayIcon::TrayIcon(XcbConnection& connection, std::optional<QDBusConnection> session, ItemMenu& menu)
    : itemMenu_(menu), host_(connection, std::move(session), [this] { begin(); }) {}

TrayIcon::~TrayIcon() {
    if (menu_) {
        menu_->clear();  // Qt forgets its entries' counterparts in the tray when a menu ends with some left in it
    }
}

void TrayIcon::begin() {
    menu_ = std::make_unique<QMenu>();
    itemMenu_.fill(*menu_);
    icon_ = std::make_unique<QSystemTrayIcon>();
    icon_->setContextMenu(menu_.get());
    icon_->setToolTip(toolTip_);
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger && onClick) {
                             onClick();
                         }
                     });
    show();
}

void TrayIcon::show() {
    if (icon_ && image_) {
        icon_->setIcon(iconOf(image_));
    }
    if (icon_) {
        icon_->setVisible(image_ && isShown_);
    }
}

void TrayIcon::setImage(ImagePtr image) {
    if (image != image_) {
        image_ = std::move(image);
        show();
    }
}

void TrayIcon::setToolTip(const std::string& text) {
    toolTip_ = QString::fromStdString(text);
    if (icon_) {
        icon_->setToolTip(toolTip_);
    }
}

void TrayIcon::setShown(bool isShown) {
    isShown_ = isShown;
    show();
}

}  // namespace glintar::platform
