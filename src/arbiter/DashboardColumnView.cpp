#include "arbiter/DashboardColumnView.h"

#include "arbiter/PriceListView.h"
#include "platform/qt/views/ViewParts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace glintar::arbiter {

namespace {

constexpr int kIcon = DashboardPictures::kCoin;
constexpr int kSpacing = 6;

}  // namespace

DashboardColumnView::DashboardColumnView(DashboardPictures& pictures, QWidget* parent)
    : QWidget(parent),
      pictures_(pictures),
      name_(platform::plainLabel(this, platform::viewFont(14, QFont::ExtraBold))),
      divider_(platform::divider(this, Qt::Horizontal)),
      prices_(new PriceListView(pictures, this)) {
    name_->setMinimumHeight(kIcon);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 4, 0, 0);
    column->setSpacing(8);
    auto* const header = new QHBoxLayout;
    header->setContentsMargins(8, 0, 8, 0);
    header->setSpacing(0);
    header->addStretch();
    header->addSpacing(kIcon + kSpacing);
    header->addWidget(name_);
    header->addStretch();
    column->addLayout(header);
    column->addWidget(divider_);
    column->addWidget(prices_);
    column->addStretch();
}

void DashboardColumnView::show(const ArbiterColumnView& column, const DashboardStyle& style) {
    icon_ = column.icon ? platform::viewPicture(column.icon, {kIcon, kIcon}, *this) : pictures_.coin();
    update();
    name_->setText(platform::viewText(column.heading()));
    platform::setInk(*name_, style.primary);
    platform::setDividerColor(*divider_, style.line);
    prices_->show(column.entries(), style);
}

void DashboardColumnView::paintEvent(QPaintEvent* /*event*/) {
    const QRect name = name_->geometry();
    QPainter(this).drawPixmap(name.x() - kSpacing - kIcon, name.y() + (name.height() - kIcon) / 2, icon_);
}

}  // namespace glintar::arbiter
