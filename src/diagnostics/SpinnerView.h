#pragma once

#include <QBasicTimer>
#include <QColor>
#include <QLabel>

namespace glintar::diagnostics {

/// A wheel that turns while it is visible. As a label its accessible name is read out like a text.
class SpinnerView final : public QLabel {
public:
    SpinnerView(int size, QWidget* parent);
    void setColor(const QColor& color);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QBasicTimer timer_;
    QColor color_;
    int step_ = 0;
};

}  // namespace glintar::diagnostics
