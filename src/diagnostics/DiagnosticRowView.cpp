#include "diagnostics/DiagnosticRowView.h"

#include "diagnostics/SpinnerView.h"
#include "platform/qt/views/ViewParts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace glintar::diagnostics {

namespace {

constexpr int kHeight = 30;
constexpr int kSpinner = 11;
constexpr int kDot = 8;
constexpr int kCross = 14;

QPixmap dot(const QColor& color, const QWidget& widget) {
    const double ratio = widget.devicePixelRatioF();
    QPixmap picture(QSize(kDot, kDot) * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QRectF(0, 0, kDot, kDot));
    return picture;
}

}  // namespace

DiagnosticRowView::DiagnosticRowView(const platform::Graphics& graphics, QWidget* parent)
    : QWidget(parent),
      graphics_(graphics),
      name_(platform::plainLabel(this, platform::viewFont(14, QFont::Medium))),
      cell_(new QWidget(this)),
      spinner_(new SpinnerView(kSpinner, cell_)),
      mark_(platform::plainLabel(cell_, font())),
      state_(platform::plainLabel(cell_, platform::viewFont(12, QFont::Medium))) {
    setFixedHeight(kHeight);
    spinner_->setAccessibleName(QStringLiteral("testing"));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(12, 0, 12, 0);
    row->addWidget(name_, 1);
    row->addWidget(cell_);
    auto* const cell = new QHBoxLayout(cell_);
    cell->setContentsMargins(0, 0, 0, 0);
    cell->setSpacing(4);
    cell->addStretch();
    cell->addWidget(spinner_);
    cell->addWidget(mark_);
    cell->addWidget(state_);
}

void DiagnosticRowView::show(const DiagnosticNode& node, platform::Appearance appearance) {
    using Mark = StatusCell::Mark;
    const auto shown = statusCell(node.status);
    const auto color = presenter::systemColor(shown.color, appearance);
    name_->setText(platform::viewText(node.name));
    cell_->setFixedWidth(shown.width);
    spinner_->setVisible(shown.mark == Mark::Spinner);
    spinner_->setColor(platform::viewColor(color));
    mark_->setVisible(shown.mark == Mark::Dot || shown.mark == Mark::Cross);
    if (shown.mark == Mark::Dot) {
        mark_->setPixmap(dot(platform::viewColor(color), *this));
    } else if (shown.mark == Mark::Cross) {
        mark_->setPixmap(
            platform::viewPicture(graphics_.symbol("xmark.circle.fill", 12, color), {kCross, kCross}, *this));
    }
    state_->setVisible(!shown.text.empty());
    state_->setFont(platform::viewFont(12, shown.isBold ? QFont::Bold : QFont::Medium));
    state_->setText(platform::viewText(shown.text));
    platform::setInk(*state_, color);
}

}  // namespace glintar::diagnostics
