#pragma once

#include "platform/Window.h"
#include "platform/qt/windows/QtOverlay.h"

namespace glintar::platform {

/// A window of Qt's that holds the widget of a `QtView`. It stays above normal windows; a titled one asks for a close
/// button and for none to minimize or maximize. Escape closes it.
class QtWindow final : public Window {
public:
    /// Keeps the references.
    QtWindow(Frame frame, const std::string& title, const QtOverlay::Surroundings& surroundings);
    QtWindow(const QtWindow&) = delete;
    QtWindow& operator=(const QtWindow&) = delete;
    ~QtWindow() override;

    void setView(std::unique_ptr<View> view) override;
    Size fittingSize() const override;
    void setFrame(const Rect& frame) override;
    Rect frame() const override;
    void center() override;
    void makeKeyAndOrderFront() override;
    void close() override;
    bool isVisible() const override;
    bool isTranslucent() const override;

private:
    class Widget;

    static void describeToAssistants();

    void surroundingsChanged();

    QtOverlay::Surroundings around_;
    Widget* widget_;
    bool isToBeCentered_ = false;
    Listening screenChanges_;
    Listening compositorChanges_;
};

}  // namespace glintar::platform
