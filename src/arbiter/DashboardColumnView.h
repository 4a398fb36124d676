#pragma once

#include "arbiter/DashboardPicturesView.h"
#include "arbiter/DashboardStyle.h"

#include <QWidget>

class QLabel;

namespace glintar::arbiter {

class PriceListView;

/// One coin's column: its icon and name above its prices.
class DashboardColumnView final : public QWidget {
public:
    DashboardColumnView(DashboardPictures& pictures, QWidget* parent);

    void show(const ArbiterColumnView& column, const DashboardStyle& style);

private:
    DashboardPictures& pictures_;
    QLabel* name_;  // is read out before its picture
    QLabel* icon_;
    QWidget* divider_;
    PriceListView* prices_;
};

}  // namespace glintar::arbiter
