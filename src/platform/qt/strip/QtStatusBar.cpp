#include "platform/qt/strip/QtStatusBar.h"

#include "platform/DesktopEvents.h"
#include "platform/qt/strip/ItemMenu.h"
#include "platform/qt/strip/StripAccessibility.h"
#include "platform/qt/strip/StripItem.h"
#include "platform/qt/strip/StripSight.h"
#include "platform/qt/strip/TrayIcon.h"
#include "platform/qt/views/ViewParts.h"
#include "platform/qt/windows/QtScreens.h"

#include <QCursor>
#include <QPointer>

namespace glintar::platform {

namespace {

/// Outlives the bar if it must; then it does nothing.
class QtStatusItem final : public StatusItem {
public:
    QtStatusItem(StripWindow& strip, XcbConnection& connection, const QtScreens& screens, Length length)
        : connection_(connection), screens_(screens), strip_(&strip), view_(&strip.addItem()) {
        view_->onMouseUp = [this](MouseButton button) { tell(button); };
        setLength(length);
    }

    ~QtStatusItem() override {
        if (view_) {
            strip_->removeItem(*view_);
        }
    }

    void putIntoTray(std::optional<QDBusConnection> session) {
        menu_.listenBy(*view_);
        view_->setAccessibleName(QStringLiteral("Glintar"));  // it has no title
        tray_ = std::make_unique<TrayIcon>(connection_, std::move(session), menu_);
        tray_->onClick = [this] {
            // The menu that the click may open belongs to the icon that was clicked.
            isTrayClicked_ = true;
            tell(MouseButton::Left);
            isTrayClicked_ = false;
        };
    }

    void setLength(Length length) override {
        if (view_) {
            view_->setLength(length);
        }
    }

    void setVisible(bool isVisible) override {
        if (view_) {
            view_->setShown(isVisible);
        }
        if (tray_) {
            tray_->setShown(isVisible);
        }
    }

    void setImage(ImagePtr image) override {
        if (tray_) {
            tray_->setImage(image);
        }
        if (view_) {
            view_->setImage(std::move(image));
        }
    }

    void setTitle(AttributedText title, std::string description) override {
        if (view_) {
            view_->setTitle(std::move(title), description);
        }
    }

    void setToolTip(std::string text) override {
        if (view_) {
            setPlainToolTip(*view_, QString::fromStdString(text));
        }
        if (tray_) {
            tray_->setToolTip(text);
        }
    }

    void setMenu(Menu menu) override { menu_.setMenu(std::move(menu)); }

    void popUpMenu(Point at) override {
        if (isTrayClicked_) {
            menu_.popUp(QCursor::pos(), QCursor::pos().y());
        } else if (view_) {
            const QRect place = onScreen();
            const int gap = qRound(-at.y);
            menu_.popUp({place.x() + qRound(at.x), place.y() + place.height() + gap}, place.y() - gap);
        }
    }

    Rect frame() const override { return view_ && view_->isVisible() ? screens_.map().fromQt(onScreen()) : Rect{}; }

    ItemSight sight() const override {
        if (!view_) {
            return {};
        }
        const double scale = view_->devicePixelRatio();
        const PixelArea pixels{.x = qRound(view_->x() * scale),
                               .y = 0,
                               .width = qRound(view_->width() * scale),
                               .height = qRound(view_->height() * scale)};
        const Rect place = frame();
        return {.cover = coverOf(connection_, static_cast<xcb_window_t>(strip_->winId()), pixels,
                                 screens_.map().pixelFrames()),
                .width = place.width,
                .left = place.x,
                .isPlacedByUser = strip_->isDraggedAway(),
                .leftOut = view_->leftOut()};
    }

private:
    QRect onScreen() const { return view_->geometry().translated(strip_->place().topLeft()); }

    void tell(MouseButton button) {
        if (const auto told = onMouseUp) {
            told(button);
        }
    }

    XcbConnection& connection_;
    const QtScreens& screens_;
    QPointer<StripWindow> strip_;
    QPointer<StripItem> view_;
    ItemMenu menu_;
    std::unique_ptr<TrayIcon> tray_;
    bool isTrayClicked_ = false;
};

}  // namespace

QtStatusBar::QtStatusBar(Surroundings surroundings)
    : around_(std::move(surroundings)),
      strip_({.graphics = around_.graphics, .preferences = around_.preferences, .screens = around_.screens}, look(),
             around_.isManaged) {
    describeStripToAssistants();
    strip_.onScaleChanged = [this] {
        if (onScaleChanged) {
            onScaleChanged();
        }
    };
    compositorChanged_ = around_.compositor.onChange([this] { strip_.setLook(look()); });
    appearanceChanged_ = around_.notifications.observe(kAppearanceChanged, [this] { strip_.setLook(look()); });
    // A window that becomes active goes above all others; where it covers the strip, even if only for the X server, the
    // strip gets no clicks.
    if (!around_.isManaged) {
        activeWindowChanged_ = around_.connection.onRootProperty("_NET_ACTIVE_WINDOW", [this] { strip_.raise(); });
    }
}

QtStatusBar::~QtStatusBar() = default;

StripLook QtStatusBar::look() const {
    return {.isTranslucent = around_.compositor.isRunning(), .appearance = around_.events.appearance()};
}

Rect QtStatusBar::frame() const {
    return strip_.isVisible() ? around_.screens.map().fromQt(strip_.place()) : Rect{};
}

Rect QtStatusBar::screen() const {
    const ScreenMap& map = around_.screens.map();
    return map.fromQt(map.screenAt(map.fromQt(strip_.place()).origin()).frame);
}

std::unique_ptr<StatusItem> QtStatusBar::addItem(StatusItem::Length length) {
    auto item = std::make_unique<QtStatusItem>(strip_, around_.connection, around_.screens, length);
    if (length == StatusItem::Length::Square && !hasTrayIcon_) {
        hasTrayIcon_ = true;
        item->putIntoTray(around_.session);
    }
    return item;
}

}  // namespace glintar::platform
