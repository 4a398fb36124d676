#include "settings/PartsView.h"

#include "platform/qt/events/DesktopLook.h"
#include "platform/qt/graphics/QtImage.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOption>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace glintar::settings {

namespace {

constexpr double kDesktopFont = 13;  // the size that the screens were drawn for
constexpr double kRound = 20;
constexpr int kNarrowestText = 200;
constexpr int kWidestText = 560;

double fontScale() {
    return QFontInfo(QApplication::font()).pixelSize() / kDesktopFont;
}

void paintImage(QPainter& painter, const platform::Image& image, const QRect& rect) {
    const auto size = image.size();
    const double ratio = painter.device()->devicePixelRatioF();
    const QImage pixels = platform::pixelsAt(image, size, ratio);
    painter.drawImage(QPointF(rect.x() + (rect.width() - size.width) / 2, rect.y() + (rect.height() - size.height) / 2),
                      pixels);
}

void paintFocus(QPainter& painter, const QWidget& widget) {
    QStyleOptionFocusRect option;
    option.initFrom(&widget);
    widget.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, &widget);
}

/// Return does what the space bar does.
bool clicksOnReturn(QAbstractButton& button, const QKeyEvent& event) {
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (isReturn) {
        button.click();
    }
    return isReturn;
}

}  // namespace

QColor toneColor(const QPalette& palette, Tone tone) {
    const bool isDark = platform::appearanceOf(palette) == platform::Appearance::Dark;
    switch (tone) {
        case Tone::Primary:
            return palette.color(QPalette::WindowText);
        case Tone::Secondary:
            return isDark ? QColor(0xa8, 0xa8, 0xad) : QColor(0x5c, 0x5c, 0x61);
        case Tone::Error:
            return isDark ? QColor(0xff, 0x6b, 0x62) : QColor(0xc4, 0x12, 0x12);
        case Tone::Go:
            return isDark ? QColor(0x3a, 0xd0, 0x5c) : QColor(0x1c, 0x84, 0x38);
        case Tone::Link:
            return isDark ? QColor(0x5a, 0xa9, 0xff) : QColor(0x00, 0x5f, 0xcc);
        case Tone::Key:
            return isDark ? QColor(0xff, 0xd6, 0x0a) : QColor(0x86, 0x64, 0x00);
        case Tone::Badge:
            return isDark ? QColor(0xff, 0x9f, 0x0a) : QColor(0xa8, 0x4f, 0x00);
    }
    std::unreachable();
}

QFont fontSized(double points, QFont::Weight weight) {
    QFont font = QApplication::font();
    font.setPixelSize(std::max(1, qRound(points * fontScale())));
    font.setWeight(weight);
    return font;
}

ToneLabel::ToneLabel(const QString& words, Tone tone, const QFont& font, QWidget* parent)
    : QLabel(words, parent), tone_(tone) {
    setTextFormat(Qt::PlainText);
    setFont(font);
    if (tone == Tone::Badge) {
        setContentsMargins(4, 0, 4, 0);
    }
    colour();
}

void ToneLabel::paintEvent(QPaintEvent* event) {
    if (tone_ == Tone::Badge) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor ground = toneColor(palette(), tone_);
        ground.setAlphaF(0.1F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground);
        painter.drawRoundedRect(rect(), 4, 4);
    }
    QLabel::paintEvent(event);
}

void ToneLabel::wrap() {
    setWordWrap(true);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void ToneLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        colour();
    }
}

void ToneLabel::colour() {
    const QColor color = toneColor(QApplication::palette(), tone_);
    if (palette().color(QPalette::WindowText) != color) {
        QPalette own;
        own.setColor(QPalette::WindowText, color);
        own.setColor(QPalette::Text, color);  // on the ground of a list
        setPalette(own);
    }
}

WrappedText::WrappedText(QString words, QWidget* parent) : QWidget(parent), words_(std::move(words)) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize WrappedText::sizeHint() const {
    const int width = std::min(fontMetrics().horizontalAdvance(words_) + 1, kWidestText);
    return {width, heightForWidth(width)};
}

QSize WrappedText::minimumSizeHint() const {
    return {std::min(sizeHint().width(), kNarrowestText), fontMetrics().height()};
}

int WrappedText::heightForWidth(int width) const {
    return fontMetrics().boundingRect(0, 0, width, QWIDGETSIZE_MAX, Qt::TextWrapAnywhere, words_).height();
}

void WrappedText::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.drawText(rect(), Qt::TextWrapAnywhere | Qt::AlignVCenter, words_);
}

NoteLabel::NoteLabel(Tone tone, QWidget* parent)
    : QWidget(parent), label_(new ToneLabel({}, tone, fontSized(kCaption), this)) {
    label_->wrap();
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label_);
    hide();
}

void NoteLabel::setText(const QString& words) {
    if (label_->text() == words) {
        return;
    }
    label_->setText(words);
    setVisible(!words.isEmpty());
    if (!words.isEmpty()) {
        QAccessibleEvent event(label_, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

SymbolView::SymbolView(const platform::Graphics& graphics, std::string name, double fontSize, Tone tone,
                       QWidget* parent)
    : QWidget(parent), graphics_(graphics), name_(std::move(name)), fontSize_(fontSize), tone_(tone) {
    const int side = qRound(fontSize * fontScale() * 1.25);
    setFixedSize(side, side);
}

SymbolView::SymbolView(const platform::Graphics& graphics, const platform::ImagePtr& image, QSize box, QWidget* parent)
    : QWidget(parent), graphics_(graphics) {
    image_ = graphics.fitted(image, {static_cast<double>(box.width()), static_cast<double>(box.height())});
    setFixedSize(qCeil(image_->size().width), qCeil(image_->size().height));
}

void SymbolView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (image_) {
        paintImage(painter, *image_, rect());
    } else {
        paintSymbol(painter, graphics_, name_, fontSize_ * fontScale(), toneColor(palette(), tone_), rect());
    }
}

void paintSymbol(QPainter& painter, const platform::Graphics& graphics, const std::string& name, double fontSize,
                 const QColor& color, const QRect& rect) {
    if (const auto image =
            graphics.symbol(name, fontSize, {color.redF(), color.greenF(), color.blueF(), color.alphaF()})) {
        paintImage(painter, *image, rect);
    }
}

RoundButton::RoundButton(const platform::Graphics& graphics, std::string symbol, Tone tone, const QString& name,
                         QWidget* parent)
    : QAbstractButton(parent), graphics_(graphics), symbol_(std::move(symbol)), tone_(tone) {
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(name);
    setToolTip(name);
}

QSize RoundButton::sizeHint() const {
    const int side = qRound(kRound * fontScale() * 1.5);
    return {side, side};
}

void RoundButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QColor color = toneColor(palette(), tone_);
    color.setAlphaF(isDown() ? 0.6F : 1.0F);
    paintSymbol(painter, graphics_, symbol_, kRound * fontScale(), color, rect());
    if (hasFocus()) {
        paintFocus(painter, *this);
    }
}

void RoundButton::keyPressEvent(QKeyEvent* event) {
    if (!clicksOnReturn(*this, *event)) {
        QAbstractButton::keyPressEvent(event);
    }
}

LinkButton::LinkButton(const QString& words, Tone tone, const QFont& font, QWidget* parent)
    : QAbstractButton(parent), tone_(tone) {
    QFont underlined = font;
    underlined.setUnderline(true);
    setFont(underlined);
    setText(QString(words).replace('&', "&&"));  // it names no key
    setAccessibleName(words);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
    return fontMetrics().size(Qt::TextSingleLine, accessibleName()) + QSize(4, 4);
}

void LinkButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(toneColor(palette(), tone_));
    painter.drawText(rect(), Qt::AlignCenter, accessibleName());
    if (hasFocus()) {
        paintFocus(painter, *this);
    }
}

void LinkButton::keyPressEvent(QKeyEvent* event) {
    if (!clicksOnReturn(*this, *event)) {
        QAbstractButton::keyPressEvent(event);
    }
}

QScrollArea* rowList(const QString& name, QWidget* parent) {
    auto* const scroller = new QScrollArea(parent);
    scroller->setWidgetResizable(true);
    scroller->setFocusPolicy(Qt::NoFocus);
    scroller->setMinimumHeight(scroller->fontMetrics().height() * 5);
    scroller->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    auto* const list = new QWidget;
    list->setAccessibleName(name);
    list->setBackgroundRole(QPalette::Base);
    auto* const rows = new QVBoxLayout(list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addStretch();
    scroller->setWidget(list);
    return scroller;
}

void focusOn(QWidget& widget, Qt::FocusReason reason) {
    widget.setFocus(reason);
    for (QWidget* around = widget.parentWidget(); around != nullptr; around = around->parentWidget()) {
        if (auto* const scroller = qobject_cast<QScrollArea*>(around)) {
            scroller->ensureWidgetVisible(&widget);
        }
    }
}

QFrame* divider(QWidget* parent) {
    auto* const line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

}  // namespace glintar::settings
