#pragma once

#include "platform/Graphics.h"

#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QString>

#include <functional>
#include <string_view>

class QLabel;
class QWidget;

namespace glintar::platform {

[[nodiscard]] QColor viewColor(const Color& color);
[[nodiscard]] QString viewText(std::string_view text);

/// The desktop's font in pixels; `isFixed` takes the one of equally wide characters.
[[nodiscard]] QFont viewFont(int pixels, QFont::Weight weight = QFont::Normal, bool isFixed = false);

/// A picture of the core's stretched to a size, as sharp as the widget's screen; null without a picture.
[[nodiscard]] QPixmap viewPicture(const ImagePtr& image, const Size& size, const QWidget& widget);

/// Shows the picture, unless it is the one that is shown.
void setPicture(QLabel& label, const QPixmap& picture);

/// A tool tip that is shown, and read out, as it stands: whoever wrote it, none of it is markup.
void setPlainToolTip(QWidget& widget, const QString& text);

/// The text's colour.
void setInk(QWidget& widget, const Color& color);

/// A style sheet for a scroll area whose bars are thin and lie on what is behind them.
inline constexpr int kThinScrollBar = 6;
[[nodiscard]] QString thinScrollBars(const Color& handle);

/// A label on nothing, which keeps its text to itself: no markup, no shortcuts.
[[nodiscard]] QLabel* plainLabel(QWidget* parent, const QFont& font);

/// Runs `redraw` soon after the widget came to a screen of another scale, for what was drawn for the pixels of the
/// last.
void onScaleChange(QWidget& widget, std::function<void()> redraw);

/// A line one point thick across the layout, or down it.
[[nodiscard]] QWidget* divider(QWidget* parent, Qt::Orientation orientation);
void setDividerColor(QWidget& divider, const Color& color);

}  // namespace glintar::platform
