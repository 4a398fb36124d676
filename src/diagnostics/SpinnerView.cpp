#include "diagnostics/SpinnerView.h"

#include <QPainter>
#include <QTimerEvent>

namespace glintar::diagnostics {

namespace {

constexpr int kSpokes = 8;
constexpr int kMillisecondsAStep = 100;

}  // namespace

SpinnerView::SpinnerView(int size, QWidget* parent) : QLabel(parent) {
    setFixedSize(size, size);
}

void SpinnerView::setColor(const QColor& color) {
    color_ = color;
    update();
}

void SpinnerView::showEvent(QShowEvent* event) {
    timer_.start(kMillisecondsAStep, this);
    QLabel::showEvent(event);
}

void SpinnerView::hideEvent(QHideEvent* event) {
    timer_.stop();
    QLabel::hideEvent(event);
}

void SpinnerView::timerEvent(QTimerEvent* event) {
    if (event->timerId() == timer_.timerId()) {
        step_ = (step_ + 1) % kSpokes;
        update();
    }
}

void SpinnerView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    const double radius = width() / 2.0;
    for (int spoke = 0; spoke < kSpokes; ++spoke) {
        QColor faded = color_;
        const int behind = (step_ - spoke + kSpokes) % kSpokes;
        faded.setAlphaF(static_cast<float>(color_.alphaF() * (1 - 0.8 * behind / kSpokes)));
        painter.setPen(QPen(faded, radius * 0.24, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -radius * 0.45), QPointF(0, -radius * 0.86));
        painter.rotate(360.0 / kSpokes);
    }
}

}  // namespace glintar::diagnostics
