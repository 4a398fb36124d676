#include "arbiter/DashboardPicturesView.h"

#include "platform/qt/views/ViewParts.h"

#include <QPainter>
#include <QPainterPath>

namespace glintar::arbiter {

void DashboardPictures::restyle(const DashboardStyle& style, const QWidget& widget) {
    constexpr double kCoinSymbol = 17;  // as high as a coin's icon
    widget_ = &widget;
    neutral_ = style.secondary;
    arrow_ = platform::viewPicture(graphics_.symbol("arrow.down", 8, style.gapText), {kArrow, kArrow}, widget);
    coin_ = platform::viewPicture(graphics_.symbol("bitcoinsign.circle.fill", kCoinSymbol, style.coinSymbol),
                                  {kCoin, kCoin}, widget);
    sources_.clear();
}

const QPixmap& DashboardPictures::source(const std::string& iconName) {
    auto& rounded = sources_[iconName];
    if (rounded.isNull()) {
        const auto picture =
            platform::viewPicture(platformImage(graphics_, iconName, neutral_), {kIcon, kIcon}, *widget_);
        rounded = QPixmap(picture.size());
        rounded.setDevicePixelRatio(picture.devicePixelRatio());
        rounded.fill(Qt::transparent);
        QPainter painter(&rounded);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(0, 0, kIcon, kIcon), 4, 4);
        painter.setClipPath(path);
        painter.drawPixmap(0, 0, picture);
    }
    return rounded;
}

}  // namespace glintar::arbiter
