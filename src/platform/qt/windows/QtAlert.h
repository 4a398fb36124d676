#pragma once

#include "platform/Window.h"

#include <QMessageBox>

namespace glintar::platform {

/// A message box that waits for its answer without a loop of its own.
class QtAlert final : public Alert {
public:
    QtAlert(const AlertText& text, std::function<void(std::size_t)> onAnswer);

private:
    QMessageBox box_;
};

/// The session's clipboard.
class QtClipboard final : public Clipboard {
public:
    void setText(std::string text) override;
};

}  // namespace glintar::platform
