#pragma once

#include "platform/Console.h"
#include "platform/Window.h"
#include "platform/qt/windows/QtOverlay.h"

#include <QDBusConnection>
#include <QObject>

#include <optional>

namespace glintar::platform {

/// Windows, overlays and alerts of Qt and X, and the desktop's notices over D-Bus. Main thread only.
class QtWindowServer final : public WindowServer {
public:
    /// Keeps the references, and so do the windows it makes. `bus` is the user's, if there is one.
    QtWindowServer(const QtOverlay::Surroundings& surroundings, Console& console, std::optional<QDBusConnection> bus);
    ~QtWindowServer() override;

    std::unique_ptr<Window> makeWindow(Window::Frame frame, std::string title) override;
    std::unique_ptr<Overlay> makeOverlay(std::string title) override;
    std::unique_ptr<Alert> showAlert(AlertText text, std::function<void(std::size_t)> onAnswer) override;
    bool hasCompositor() const override { return surroundings_.compositor.isRunning(); }
    Rect visibleFrame(const Rect& near) const override;
    void notify(std::string title, std::string text) override;

private:
    QtOverlay::Surroundings surroundings_;
    Console& console_;
    std::optional<QDBusConnection> bus_;
    QObject calls_;  // those under way are its children
};

}  // namespace glintar::platform
