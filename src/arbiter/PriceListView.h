#pragma once

#include "arbiter/DashboardPicturesView.h"
#include "arbiter/DashboardStyle.h"

#include <QWidget>

#include <vector>

class QLabel;

namespace glintar::arbiter {

/// The prices of one column, each on a plate, and between two of them a badge with the gap, which takes no room.
///
/// Plates and badges are painted here, under labels that do not overlap, so that these can stand in the order in which
/// they are read out.
class PriceListView final : public QWidget {
public:
    PriceListView(DashboardPictures& pictures, QWidget* parent);

    void show(const std::vector<PriceEntry>& entries, const DashboardStyle& style);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Row {
        QLabel* icon;
        QLabel* price;
        QLabel* gap;  ///< null in the last row: hidden it would still be there for a screen reader
    };
    void addRow(bool hasGap);
    void removeRow();
    void showRow(const Row& row, const PriceEntry& entry);
    void place();
    [[nodiscard]] QRect plate(std::size_t index) const;
    [[nodiscard]] QRect badge(std::size_t index) const;

    DashboardPictures& pictures_;
    DashboardStyle style_;
    std::vector<Row> rows_;
    int hintedWidth_ = 0;
};

}  // namespace glintar::arbiter
