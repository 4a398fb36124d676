#include "platform/qt/windows/QtWindow.h"

#include "platform/qt/windows/ManagerMessage.h"
#include "platform/qt/windows/QtView.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>
#include <malloc.h>

#include <algorithm>
#include <optional>

namespace glintar::platform {

namespace {

/// So many milliseconds a window manager takes to put a window where it wants it.
constexpr int kPlacing = 500;

}  // namespace

/// Outlives its `QtWindow` by a turn of the event loop: it may be in the middle of an event that ended that.
class QtWindow::Widget final : public QWidget {
public:
    Widget(QtWindow& window, Frame frame) : window_(&window), frame_(frame), layout_(this) {
        const auto kind = frame == Frame::Titled
                              ? Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint
                              : Qt::Dialog | Qt::FramelessWindowHint;
        setWindowFlags(kind | Qt::WindowStaysOnTopHint);
        setAttribute(Qt::WA_TranslucentBackground, frame == Frame::Borderless);
        layout_.setContentsMargins(0, 0, 0, 0);
        layout_.setSizeConstraint(QLayout::SetNoConstraint);
    }

    Widget(const Widget&) = delete;
    Widget& operator=(const Widget&) = delete;
    /// What a window took goes back when it is gone: the next one opens in an hour, or never.
    ~Widget() override { ::malloc_trim(0); }

    void setContent(std::unique_ptr<QWidget> content) {
        content_ = std::move(content);
        layout_.addWidget(content_.get());
        content_->show();
        fittingSize_ = sizeHint();
        fit();
    }

    void leaveWindow() {
        window_ = nullptr;
        content_.reset();  // what it shows may go with the window
        hide();
        deleteLater();
    }

    /// The view paints again, which may look at it.
    void setTranslucent(bool isTranslucent) {
        setProperty("isTranslucent", isTranslucent);
        update();
        if (content_) {
            content_->update();
        }
    }

    /// A titled window is as large as its content, and wholly on its screen, if there it can be.
    void fit() {
        if (window_ == nullptr) {
            return;
        }
        const ScreenMap& map =
            window_->around_.screens.map();  // before Qt has thought of another screen for the window
        const Rect now = map.fromQt(geometry());
        const QRect free = map.toQt(
            window_->around_.screens.freeAreaOf(map.screenAt({now.x + now.width / 2, now.y + now.height / 2})));
        if (frame_ == Frame::Titled) {
            setFixedSize(sizeHint().boundedTo(free.size() - (frameGeometry().size() - size())));
        }
        if (isVisible() && !isMinimized()) {
            const QPoint to(std::max(std::min(x(), free.right() + 1 - frameGeometry().width()), free.x()),
                            std::max(std::min(y(), free.bottom() + 1 - frameGeometry().height()), free.y()));
            const QRect place = geometry().translated(to - pos());
            if (place != geometry() || place.size() != windowHandle()->size()) {
                setGeometry(place);
                windowHandle()->setGeometry(place);  // at another scale it has kept its pixels
            }
        }
    }

    /// The window was shown, placed or resized: it is moved by the window manager now, if at all.
    void expectToBePlaced() {
        isDragged_ = false;
        placed_.start();
    }

    void tell(std::function<void()> Window::* listener) {
        if (const auto told = window_ == nullptr ? nullptr : window_->*listener) {  // it may end the window
            told();
        }
    }

protected:
    void closeEvent(QCloseEvent* event) override {
        const bool wasShown = isVisible();
        QWidget::closeEvent(event);
        hide();
        if (wasShown) {
            tell(&Window::onClosed);
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
        if (event->button() == Qt::LeftButton) {
            held_ = event->globalPosition().toPoint();
            isDragged_ = false;
        }
    }

    void mouseMoveEvent(QMouseEvent* event) override {
        const QPoint way = held_ ? event->globalPosition().toPoint() - *held_ : QPoint();
        if (!isDragged_ && way.manhattanLength() < QApplication::startDragDistance()) {
            return;
        }
        if (!std::exchange(isDragged_, true) && hasManager(connectionOfQt()) && windowHandle()->startSystemMove()) {
            held_.reset();
        } else if (held_) {  // no window manager does it
            held_ = event->globalPosition().toPoint();
            move(pos() + way);
            tell(&Window::onMoved);
        }
    }

    void mouseReleaseEvent(QMouseEvent* /*event*/) override { held_.reset(); }

    /// Window managers too have handles and keys by which the user moves a window, and tell of it when it is done.
    void moveEvent(QMoveEvent* event) override {
        if (event->spontaneous() && (isDragged_ || placed_.hasExpired(kPlacing))) {
            tell(&Window::onMoved);
        }
    }

    /// Without a compositor nothing shows through, not even where the view leaves something free.
    void paintEvent(QPaintEvent* event) override {
        if (frame_ == Frame::Borderless && !isInTranslucentWindow(*this)) {
            QPainter(this).fillRect(event->rect(), palette().window());
        }
    }

    bool event(QEvent* event) override {
        const bool isHandled = QWidget::event(event);
        if (event->type() == QEvent::LayoutRequest && std::exchange(fittingSize_, sizeHint()) != sizeHint()) {
            fit();
            tell(&Window::onFittingSizeChanged);
        } else if (event->type() == QEvent::WindowStateChange &&
                   isMinimized() !=
                       static_cast<QWindowStateChangeEvent*>(event)->oldState().testFlag(Qt::WindowMinimized)) {
            fit();
            tell(&Window::onVisibilityChanged);
        }
        return isHandled;
    }

private:
    QtWindow* window_;
    Frame frame_;
    std::unique_ptr<QWidget> content_;
    QVBoxLayout layout_;
    QSize fittingSize_;
    std::optional<QPoint> held_;  ///< where on screen the pointer last was in a drag
    bool isDragged_ = false;
    QElapsedTimer placed_;
};

/// Screen readers take a plain widget for a part of a window.
void QtWindow::describeToAssistants() {
    static constexpr auto kDescribe = [](const QString&, QObject* object) -> QAccessibleInterface* {
        auto* const window = dynamic_cast<Widget*>(object);
        return window ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
    };
    QAccessible::removeFactory(kDescribe);  // twice in the list it would be asked twice
    QAccessible::installFactory(kDescribe);
}

QtWindow::QtWindow(Frame frame, const std::string& title, const QtOverlay::Surroundings& surroundings)
    : around_(surroundings), widget_(new Widget(*this, frame)) {
    describeToAssistants();
    widget_->setWindowTitle(QString::fromStdString(title));
    widget_->setTranslucent(isTranslucent());
    widget_->winId();
    QObject::connect(widget_->windowHandle(), &QWindow::screenChanged, widget_, [this] { widget_->fit(); });
    screenChanges_ = around_.screens.onChange([this] { surroundingsChanged(); });
    compositorChanges_ = around_.compositor.onChange([this] { surroundingsChanged(); });
}

QtWindow::~QtWindow() {
    widget_->leaveWindow();
}

void QtWindow::surroundingsChanged() {
    widget_->setTranslucent(isTranslucent());
    widget_->expectToBePlaced();
    widget_->fit();
    widget_->tell(&Window::onSurroundingsChanged);
}

void QtWindow::setView(std::unique_ptr<View> view) {
    widget_->setContent(static_cast<QtView&>(*view).take());
}

Size QtWindow::fittingSize() const {
    widget_->ensurePolished();
    const QSize size = widget_->sizeHint();
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

void QtWindow::setFrame(const Rect& frame) {
    isToBeCentered_ = false;
    widget_->expectToBePlaced();
    widget_->setGeometry(around_.screens.map().toQt(frame));
}

Rect QtWindow::frame() const {
    return around_.screens.map().fromQt(widget_->geometry());
}

void QtWindow::center() {
    isToBeCentered_ = !widget_->isVisible();
    const QScreen* const screen = QGuiApplication::screenAt(QCursor::pos());
    const QRect free = (screen == nullptr ? widget_->screen() : screen)->availableGeometry();
    widget_->move(free.center() - QRect(QPoint(), widget_->frameGeometry().size()).center());
}

void QtWindow::makeKeyAndOrderFront() {
    widget_->expectToBePlaced();
    widget_->fit();
    if (isToBeCentered_) {
        center();
        isToBeCentered_ = false;
    }
    bringToFront(*widget_);
}

void QtWindow::close() {
    widget_->close();
}

bool QtWindow::isVisible() const {
    return widget_->isVisible() && !widget_->isMinimized();
}

bool QtWindow::isTranslucent() const {
    return widget_->testAttribute(Qt::WA_TranslucentBackground) && around_.compositor.isRunning();
}

}  // namespace glintar::platform
