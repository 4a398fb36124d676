#pragma once

#include "platform/Window.h"

#include <QWidget>

#include <memory>

namespace glintar::platform {

/// A widget on its way into a window.
class QtView final : public View {
public:
    explicit QtView(std::unique_ptr<QWidget> widget) : widget_(std::move(widget)) {}
    [[nodiscard]] std::unique_ptr<QWidget> take() { return std::move(widget_); }

private:
    std::unique_ptr<QWidget> widget_;
};

/// Whether what lies behind the widget's window shows through where nothing opaque is painted
/// (`Window::isTranslucent`). The widget is painted again when that changes.
[[nodiscard]] inline bool isInTranslucentWindow(const QWidget& widget) {
    return widget.window()->property("isTranslucent").toBool();
}

}  // namespace glintar::platform
