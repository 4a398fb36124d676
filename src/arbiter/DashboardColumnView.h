#pragma once

#include "arbiter/DashboardPicturesView.h"
#include "arbiter/DashboardStyle.h"

#include <QPixmap>
#include <QWidget>

class QLabel;

namespace glintar::arbiter {

class PriceListView;

/// One coin's column: its icon and name above its prices.
class DashboardColumnView final : public QWidget {
public:
    DashboardColumnView(DashboardPictures& pictures, QWidget* parent);

    void show(const ArbiterColumnView& column, const DashboardStyle& style);

protected:
    /// The picture is painted, not a label: it says nothing that a screen reader could say.
    void paintEvent(QPaintEvent* event) override;

private:
    DashboardPictures& pictures_;
    QPixmap icon_;
    QLabel* name_;
    QWidget* divider_;
    PriceListView* prices_;
};

}  // namespace glintar::arbiter
