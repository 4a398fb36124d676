#include "platform/qt/windows/QtWindow.h"

#include "platform/qt/windows/QtView.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

namespace glintar::platform {

class QtWindow::Widget final : public QWidget {
public:
    Widget(QtWindow& window, Frame frame) : window_(window), frame_(frame), layout_(this) {
        const auto kind = frame == Frame::Titled ? Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint
                                                 : Qt::Dialog | Qt::FramelessWindowHint;
        setWindowFlags(kind | Qt::WindowStaysOnTopHint);
        setAttribute(Qt::WA_TranslucentBackground, frame == Frame::Borderless);
        layout_.setContentsMargins(0, 0, 0, 0);
        layout_.setSizeConstraint(frame == Frame::Titled ? QLayout::SetFixedSize : QLayout::SetNoConstraint);
    }

    void setContent(std::unique_ptr<QWidget> content) {
        content_ = std::move(content);
        layout_.addWidget(content_.get());
    }

    void tell(const std::function<void()>& listener) {
        if (const auto kept = listener) {  // it may destroy us
            kept();
        }
    }

protected:
    void closeEvent(QCloseEvent* event) override {
        const bool wasShown = isVisible();
        QWidget::closeEvent(event);
        hide();
        if (wasShown) {
            tell(window_.onClosed);
        }
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Cancel)) {
            close();
        } else {
            QWidget::keyPressEvent(event);
        }
    }

    /// What no control wants drags the window.
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton && windowHandle() != nullptr && windowHandle()->startSystemMove()) {
            tell(window_.onMoved);
        }
    }

    bool event(QEvent* event) override {
        const bool isHandled = QWidget::event(event);
        if (event->type() == QEvent::LayoutRequest) {
            tell(window_.onFittingSizeChanged);
        }
        return isHandled;
    }

private:
    QtWindow& window_;
    Frame frame_;
    std::unique_ptr<QWidget> content_;
    QVBoxLayout layout_;
};

QtWindow::QtWindow(Frame frame, const std::string& title, QtScreens& screens, CompositorWatch& compositor)
    : screens_(screens), compositor_(compositor), widget_(std::make_unique<Widget>(*this, frame)) {
    widget_->setWindowTitle(QString::fromStdString(title));
    widget_->setProperty("isTranslucent", isTranslucent());
    const auto changed = [this] {
        widget_->setProperty("isTranslucent", isTranslucent());
        widget_->tell(onSurroundingsChanged);
    };
    screenChanges_ = screens.onChange(changed);
    compositorChanges_ = compositor.onChange(changed);
}

QtWindow::~QtWindow() = default;

void QtWindow::setView(std::unique_ptr<View> view) {
    widget_->setContent(static_cast<QtView&>(*view).take());
}

Size QtWindow::fittingSize() const {
    widget_->ensurePolished();
    const QSize size = widget_->sizeHint();
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

void QtWindow::setFrame(const Rect& frame) {
    isCentered_ = false;
    widget_->setGeometry(screens_.map().toQt(frame));
}

Rect QtWindow::frame() const {
    return screens_.map().fromQt(widget_->geometry());
}

void QtWindow::center() {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    screen = screen == nullptr ? QGuiApplication::primaryScreen() : screen;
    if (screen != nullptr) {
        widget_->adjustSize();
        widget_->move(screen->availableGeometry().center() - widget_->rect().center());
    }
}

void QtWindow::makeKeyAndOrderFront() {
    widget_->setWindowState(widget_->windowState() & ~Qt::WindowMinimized);
    widget_->show();
    widget_->raise();
    widget_->activateWindow();
}

void QtWindow::close() {
    widget_->close();
}

bool QtWindow::isVisible() const {
    return widget_->isVisible() && !widget_->isMinimized();
}

bool QtWindow::isTranslucent() const {
    return widget_->testAttribute(Qt::WA_TranslucentBackground) && compositor_.isRunning();
}

}  // namespace glintar::platform
