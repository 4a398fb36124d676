#pragma once

#include "platform/Graphics.h"

#include <QAbstractButton>
#include <QColor>
#include <QFont>
#include <QFrame>
#include <QLabel>
#include <QScrollArea>

#include <string>

namespace glintar::settings {

// What the screens of the settings are made of. All of it follows the desktop's colours while it is shown, and its
// font.

enum class Tone { Primary, Secondary, Error, Go, Link, Key, Badge };

/// Legible on the widget's background, be that light or dark.
[[nodiscard]] QColor toneColor(const QPalette& palette, Tone tone);

/// The desktop's font in a size that is `points` where the desktop's own is 13.
[[nodiscard]] QFont fontSized(double points, QFont::Weight weight = QFont::Normal);

inline constexpr double kCaption = 11;

[[nodiscard]] inline QString asText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// A text, shown as it is; a badge on a ground of its colour. After `wrap` it breaks its lines where the screen ends.
class ToneLabel final : public QLabel {
public:
    ToneLabel(const QString& words, Tone tone, const QFont& font, QWidget* parent = nullptr);
    void wrap();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void colour();
    Tone tone_;
};

/// A text of any length, which breaks wherever its line ends. Screen readers hear of it from whoever holds it.
class WrappedText final : public QWidget {
public:
    WrappedText(QString words, QWidget* parent);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString words_;
};

/// A message that comes and goes: hidden while empty, and told to screen readers when it changes.
class NoteLabel final : public QWidget {
public:
    explicit NoteLabel(Tone tone, QWidget* parent = nullptr);
    void setText(const QString& words);

private:
    ToneLabel* label_;
};

/// A shipped symbol or image, as high as text of that size; purely an ornament.
class SymbolView final : public QWidget {
public:
    /// A symbol in a tone.
    SymbolView(const platform::Graphics& graphics, std::string name, double fontSize, Tone tone,
               QWidget* parent = nullptr);
    /// An image that fits into the box.
    SymbolView(const platform::Graphics& graphics, const platform::ImagePtr& image, QSize box,
               QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const platform::Graphics& graphics_;
    std::string name_;
    double fontSize_ = 0;
    Tone tone_ = Tone::Primary;
    platform::ImagePtr image_;
};

/// A button that is a symbol alone. `name` is what it is called, and its tooltip.
class RoundButton final : public QAbstractButton {
public:
    RoundButton(const platform::Graphics& graphics, std::string symbol, Tone tone, const QString& name,
                QWidget* parent = nullptr);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const platform::Graphics& graphics_;
    std::string symbol_;
    Tone tone_;
};

/// Underlined words that lead somewhere, or do something.
class LinkButton final : public QAbstractButton {
public:
    LinkButton(const QString& words, Tone tone, const QFont& font, QWidget* parent = nullptr);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    Tone tone_;
};

[[nodiscard]] QFrame* divider(QWidget* parent);

/// A list of rows of which the window need not show all: it takes the room that is left, three rows at least.
[[nodiscard]] QScrollArea* rowList(const QString& name, QWidget* parent);

/// Gives the widget the focus, and scrolls to it.
void focusOn(QWidget& widget, Qt::FocusReason reason);

/// Paints the symbol in the middle of the rectangle.
void paintSymbol(QPainter& painter, const platform::Graphics& graphics, const std::string& name, double fontSize,
                 const QColor& color, const QRect& rect);

}  // namespace glintar::settings
