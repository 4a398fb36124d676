#include "platform/qt/events/QtDesktopEvents.h"

#include "platform/NotificationCenter.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace glintar::platform {

namespace {

// How long Qt may take to follow the desktop's colours where it does so by itself.
constexpr Duration kPatience = std::chrono::seconds{2};

}  // namespace

QtDesktopEvents::QtDesktopEvents(RunLoop& loop, NotificationCenter& notifications, Sources sources)
    : loop_(loop),
      notifications_(notifications),
      policy_(sources.policy),
      appearance_(appearanceOf(QApplication::palette())) {
    qApp->installEventFilter(this);
    if (sources.session && sources.session->isConnected()) {
        portal_.emplace(*std::move(sources.session));
        portal_->onChange = [this] { refresh(); };
    }
    if (sources.display != nullptr) {
        activeWindow_.emplace(
            loop, *sources.display, [](xcb_window_t window) { return QWidget::find(window) != nullptr; },
            [this] { notifications_.post(kActiveApplicationChanged); });
    }
}

QtDesktopEvents::~QtDesktopEvents() = default;

void QtDesktopEvents::finishFirstLook() {
    if (portal_) {
        portal_->finishFirstLook();
    }
}

bool QtDesktopEvents::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp && !isApplying_) {
        refresh();
    }
    return false;
}

void QtDesktopEvents::refresh() {
    const auto wanted = portal_ ? portal_->appearance() : std::nullopt;
    isApplying_ = true;
    const bool hasNewFont = applyFont();
    applyColors(wanted);
    isApplying_ = false;
    const auto now = wanted.value_or(appearanceOf(QApplication::palette()));
    if (std::exchange(appearance_, now) != now || hasNewFont) {
        notifications_.post(kAppearanceChanged);
    }
}

bool QtDesktopEvents::applyFont() {
    if (!portal_ || !policy_.hasPortalFont || portal_->fontName() == fontName_) {
        return false;
    }
    fontName_ = portal_->fontName();
    const auto font = fontNamed(fontName_.toStdString());
    if (!font || *font == QApplication::font()) {
        return false;
    }
    QApplication::setFont(*font);
    return true;
}

/// Leaves the desktop's own colours alone as long as they are of the kind wanted.
void QtDesktopEvents::applyColors(std::optional<Appearance> wanted) {
    const auto fits = [&] { return !wanted || appearanceOf(QApplication::palette()) == *wanted; };
    if (hasOwnColors_ && (!wanted || !fits())) {
        QApplication::setPalette(QPalette());
        hasOwnColors_ = false;
    }
    if (fits()) {
        patience_.reset();
        isPatienceOver_ = false;
    } else if (policy_.followsColors && !isPatienceOver_) {
        patience_ = loop_.after(kPatience, [this] {
            isPatienceOver_ = true;
            refresh();
        });
    } else {
        QApplication::setPalette(plainPalette(*wanted));
        hasOwnColors_ = true;
    }
}

}  // namespace glintar::platform
