#include "platform/qt/views/ViewParts.h"

#include "platform/qt/graphics/QtCanvas.h"
#include "platform/qt/graphics/QtImage.h"

#include <QEvent>
#include <QFontDatabase>
#include <QLabel>
#include <QPalette>
#include <QTextDocument>
#include <QTimer>

#include <utility>

namespace glintar::platform {

namespace {

/// Belongs to its widget. This Qt tells nobody of another scale, but paints the widget again.
class ScaleWatch final : public QObject {
public:
    ScaleWatch(QWidget& widget, std::function<void()> redraw)
        : QObject(&widget), widget_(widget), redraw_(std::move(redraw)), ratio_(widget.devicePixelRatioF()) {
        widget.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Paint && widget_.devicePixelRatioF() != ratio_) {
            ratio_ = widget_.devicePixelRatioF();
            QTimer::singleShot(0, this, redraw_);
        }
        return false;
    }

private:
    QWidget& widget_;
    std::function<void()> redraw_;
    double ratio_;
};

}  // namespace

QColor viewColor(const Color& color) {
    return qtColor(color);
}

QString viewText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QFont viewFont(int pixels, QFont::Weight weight, bool isFixed) {
    QFont font;
    if (isFixed) {
        font.setFamilies(QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
    }
    font.setPixelSize(pixels);
    font.setWeight(weight);
    font.setKerning(false);  // pairs of digits may be kerned
    return font;
}

QPixmap viewPicture(const ImagePtr& image, const Size& size, const QWidget& widget) {
    return image ? QPixmap::fromImage(pixelsAt(*image, size, widget.devicePixelRatioF())) : QPixmap();
}

void setPicture(QLabel& label, const QPixmap& picture) {
    if (label.pixmap(Qt::ReturnByValue).cacheKey() != picture.cacheKey()) {
        label.setPixmap(picture);
    }
}

void setPlainToolTip(QWidget& widget, const QString& text) {
    widget.setToolTip(Qt::convertFromPlainText(text));
    widget.setAccessibleDescription(text);  // in place of the tool tip with its markup
}

void setInk(QWidget& widget, const Color& color) {
    QPalette palette = widget.palette();
    palette.setColor(QPalette::WindowText, viewColor(color));
    widget.setPalette(palette);
}

QString thinScrollBars(const Color& handle) {
    return QStringLiteral(
               "QScrollBar { background: transparent; border: none }"
               "QScrollBar:vertical { width: %1px } QScrollBar:horizontal { height: %1px }"
               "QScrollBar::handle { background: %2; border-radius: %3px; min-width: 24px; min-height: 24px }"
               "QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0 }"
               "QScrollBar::add-page, QScrollBar::sub-page { background: none }"
               "QAbstractScrollArea::corner { background: transparent; border: none }")
        .arg(kThinScrollBar)
        .arg(viewColor(handle).name(QColor::HexArgb))
        .arg(kThinScrollBar / 2);
}

QLabel* plainLabel(QWidget* parent, const QFont& font) {
    auto* const label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    return label;
}

void onScaleChange(QWidget& widget, std::function<void()> redraw) {
    new ScaleWatch(widget, std::move(redraw));
}

QWidget* divider(QWidget* parent, Qt::Orientation orientation) {
    auto* const line = new QWidget(parent);
    line->setAutoFillBackground(true);
    orientation == Qt::Horizontal ? line->setFixedHeight(1) : line->setFixedWidth(1);
    return line;
}

void setDividerColor(QWidget& divider, const Color& color) {
    QPalette palette = divider.palette();
    palette.setColor(QPalette::Window, viewColor(color));
    divider.setPalette(palette);
}

}  // namespace glintar::platform
