#include "arbiter/PriceListView.h"

#include "platform/qt/views/ViewParts.h"

#include <QLabel>
#include <QPainter>

#include <algorithm>

namespace glintar::arbiter {

namespace {

constexpr int kSide = 8;        // free beside the plates
constexpr int kNarrowSide = 5;  // where a scroll bar wants the room
constexpr int kRowPadding = 2;  // above and below a plate
constexpr int kPlateSide = 10;  // inside a plate
constexpr int kPlatePadding = 6;
constexpr int kIcon = DashboardPictures::kIcon;
constexpr int kSpacing = 8;
constexpr int kBadgeSide = 5;
constexpr int kBadgePadding = 1;
constexpr int kBadgeSpacing = 2;
constexpr int kArrow = DashboardPictures::kArrow;

int widthOf(const QLabel* label) {
    return label->sizeHint().width();
}

}  // namespace

PriceListView::PriceListView(DashboardPictures& pictures, QWidget* parent)
    : QWidget(parent), pictures_(pictures), style_(dashboardStyle(platform::Appearance::Light)) {}

void PriceListView::addRow(bool hasGap) {
    Row row{.icon = platform::plainLabel(this, font()),
            .price = platform::plainLabel(this, platform::viewFont(13, QFont::Bold)),
            .gap = hasGap ? platform::plainLabel(this, platform::viewFont(10, QFont::Bold, true)) : nullptr};
    row.price->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (QLabel* const label : {row.icon, row.price, row.gap}) {
        if (label != nullptr) {
            label->show();
        }
    }
    rows_.push_back(row);
}

void PriceListView::removeRow() {
    for (QLabel* const label : {rows_.back().icon, rows_.back().price, rows_.back().gap}) {
        delete label;
    }
    rows_.pop_back();
}

void PriceListView::show(const std::vector<PriceEntry>& entries, const DashboardStyle& style) {
    style_ = style;
    if (rows_.size() != entries.size()) {  // another row is the last: labels are read out in the order of their making
        while (!rows_.empty() && (rows_.size() >= entries.size() || rows_.back().gap == nullptr)) {
            removeRow();
        }
        while (rows_.size() < entries.size()) {
            addRow(rows_.size() + 1 < entries.size());
        }
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        showRow(rows_[i], entries[i]);
    }
    hintedWidth_ = sizeHint().width();
    updateGeometry();
    place();
    update();
}

void PriceListView::showRow(const Row& row, const PriceEntry& entry) {
    const auto name = platform::viewText(entry.platformName);
    platform::setPicture(*row.icon, pictures_.source(entry.iconName));
    row.icon->setAccessibleName(name);
    platform::setPlainToolTip(*row.icon, name);
    row.price->setText(platform::viewText(entry.text));
    platform::setPlainToolTip(*row.price, name);
    platform::setInk(*row.price, style_.priceColor(entry.rank));
    if (row.gap != nullptr) {
        row.gap->setText(platform::viewText(entry.gap.value_or("")));
        platform::setInk(*row.gap, style_.gapText);
    }
}

QSize PriceListView::sizeHint() const {
    return minimumSizeHint() + QSize(2 * (kSide - kNarrowSide), 0);
}

QSize PriceListView::minimumSizeHint() const {
    int widest = 0;
    for (const auto& row : rows_) {
        widest = std::max(widest, widthOf(row.price));
    }
    const int height = rows_.empty() ? 0 : plate(rows_.size() - 1).bottom() + 1 + kRowPadding;
    return {widest == 0 ? 0 : 2 * (kNarrowSide + kPlateSide) + kIcon + kSpacing + widest, height};
}

QRect PriceListView::plate(std::size_t index) const {
    const int text = rows_.empty() ? 0 : rows_.front().price->sizeHint().height();
    const int height = std::max(text, kIcon) + 2 * kPlatePadding;
    const int side = width() >= hintedWidth_ ? kSide : kNarrowSide;
    return {side, static_cast<int>(index) * (height + 2 * kRowPadding) + kRowPadding, width() - 2 * side, height};
}

QRect PriceListView::badge(std::size_t index) const {
    const auto& row = rows_[index];
    const QRect over = plate(index);
    const int width = 2 * kBadgeSide + kArrow + kBadgeSpacing + widthOf(row.gap);
    const int height = row.gap->sizeHint().height() + 2 * kBadgePadding;
    return {over.right() + 1 - kSide - width, over.bottom() + 1 + kRowPadding - height / 2, width, height};
}

void PriceListView::place() {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const auto& row = rows_[i];
        const QRect inside = plate(i).adjusted(kPlateSide, kPlatePadding, -kPlateSide, -kPlatePadding);
        row.icon->setGeometry(inside.x(), inside.center().y() + 1 - kIcon / 2, kIcon, kIcon);
        row.price->setGeometry(inside.adjusted(kIcon + kSpacing, 0, 0, 0));
        if (row.gap != nullptr) {
            const QRect capsule = badge(i).adjusted(kBadgeSide, kBadgePadding, -kBadgeSide, -kBadgePadding);
            row.gap->setGeometry(capsule.adjusted(kArrow + kBadgeSpacing, 0, 0, 0));
        }
    }
}

void PriceListView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place();
}

void PriceListView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(platform::viewColor(style_.entryPlate));
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        painter.drawRoundedRect(plate(i), 6, 6);
    }
    painter.setPen(QPen(platform::viewColor(style_.line), 0.5));
    painter.setBrush(platform::viewColor(style_.gapPlate));
    for (std::size_t i = 0; i + 1 < rows_.size(); ++i) {
        const QRect capsule = badge(i);
        painter.drawRoundedRect(capsule, capsule.height() / 2.0, capsule.height() / 2.0);
        painter.drawPixmap(capsule.x() + kBadgeSide, capsule.y() + (capsule.height() - kArrow) / 2, pictures_.arrow());
    }
}

}  // namespace glintar::arbiter
