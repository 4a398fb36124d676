#include "arbiter/DashboardColumnView.h"

#include "arbiter/PriceListView.h"
#include "platform/qt/views/ViewParts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace glintar::arbiter {

namespace {

constexpr int kIcon = DashboardPictures::kCoin;

}  // namespace

DashboardColumnView::DashboardColumnView(DashboardPictures& pictures, QWidget* parent)
    : QWidget(parent),
      pictures_(pictures),
      name_(platform::plainLabel(this, platform::viewFont(14, QFont::ExtraBold))),
      icon_(platform::plainLabel(this, font())),
      divider_(platform::divider(this, Qt::Horizontal)),
      prices_(new PriceListView(pictures, this)) {
    icon_->setFixedSize(kIcon, kIcon);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 4, 0, 0);
    column->setSpacing(8);
    auto* const header = new QHBoxLayout;
    header->setContentsMargins(8, 0, 8, 0);
    header->setSpacing(6);
    header->addStretch();
    header->addWidget(icon_);
    header->addWidget(name_);
    header->addStretch();
    column->addLayout(header);
    column->addWidget(divider_);
    column->addWidget(prices_);
    column->addStretch();
}

void DashboardColumnView::show(const ArbiterColumnView& column, const DashboardStyle& style) {
    platform::setPicture(*icon_,
                         column.icon ? platform::viewPicture(column.icon, {kIcon, kIcon}, *this) : pictures_.coin());
    name_->setText(platform::viewText(column.heading()));
    platform::setInk(*name_, style.primary);
    platform::setDividerColor(*divider_, style.line);
    prices_->show(column.entries(), style);
}

}  // namespace glintar::arbiter
