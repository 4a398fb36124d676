#include "arbiter/ArbiterWindowController.h"

#include "arbiter/DashboardPlace.h"
#include "platform/Desktop.h"
#include "platform/Platform.h"
#include "platform/Registry.h"
#include "platform/StatusBar.h"

#include <utility>

namespace glintar::arbiter {

namespace {

bool isEmpty(const platform::Rect& rect) {
    return !(rect.width > 0 && rect.height > 0);
}

}  // namespace

ArbiterWindowController& ArbiterWindowController::shared(platform::Platform& platform, platform::Desktop& desktop,
                                                         const MakeView& makeView) {
    return platform.registry.shared<ArbiterWindowController>(
        [&] { return std::make_shared<ArbiterWindowController>(platform, desktop, makeView); });
}

ArbiterWindowController::ArbiterWindowController(platform::Platform& platform, platform::Desktop& desktop,
                                                 MakeView makeView)
    : platform_(platform), desktop_(desktop), makeView_(std::move(makeView)) {}

ArbiterWindowController::~ArbiterWindowController() = default;

void ArbiterWindowController::toggleWindow(Anchor anchor, std::vector<config::Coin> coins,
                                           std::optional<market::MarketDataMap> cachedMarketData) {
    if (window && window->isVisible()) {
        closeWindow();
    } else {
        presentWindow(std::move(anchor), std::move(coins), std::move(cachedMarketData));
    }
}

void ArbiterWindowController::closeWindow() {
    if (window) {
        window->close();
    }
}

void ArbiterWindowController::presentWindow(Anchor anchor, std::vector<config::Coin> coins,
                                            std::optional<market::MarketDataMap> cachedMarketData) {
    auto detail = std::make_unique<ArbiterDetailView>(platform_, desktop_.graphics, std::move(coins),
                                                      std::move(cachedMarketData));
    detail->onClose = [this] { closeWindow(); };
    detail->appeared();
    if (!window) {
        makeWindow();
    }
    window->setView(makeView_(*detail));
    detail_ = std::move(detail);
    anchor_ = std::move(anchor);
    isMoved_ = false;
    place();
    window->makeKeyAndOrderFront();
}

void ArbiterWindowController::makeWindow() {
    window = desktop_.windows.makeWindow(platform::Window::Frame::Borderless, "Glintar dashboard");
    window->onClosed = [this] {
        window.reset();
        detail_.reset();
    };
    window->onMoved = [this] { isMoved_ = true; };
    window->onFittingSizeChanged = [this] { placeIfVisible(); };
    window->onVisibilityChanged = [this] {
        window->isVisible() ? detail_->appeared() : detail_->disappeared();
        placeIfVisible();
    };
    // In the next turn of the loop, when the status bar has found its place on what screens are left.
    window->onSurroundingsChanged = [this] { platform_.runLoop.post(lifetime_.guard([this] { placeIfVisible(); })); };
}

/// Placing a minimized window would bring it back.
void ArbiterWindowController::placeIfVisible() {
    if (window && window->isVisible()) {
        place();
    }
}

void ArbiterWindowController::place() {
    const auto fitting = window->fittingSize();
    if (isMoved_) {
        const auto frame = window->frame();
        window->setFrame(resizedInPlace(frame, fitting, desktop_.windows.visibleFrame(frame)));
        return;
    }
    auto anchor = anchor_ ? anchor_() : std::nullopt;
    if (!anchor || isEmpty(*anchor)) {
        const auto strip = desktop_.statusBar.frame();
        anchor = isEmpty(strip) ? std::nullopt : std::optional(strip);
    }
    window->setFrame(dashboardFrame(fitting, anchor, desktop_.windows.visibleFrame(anchor.value_or(platform::Rect{}))));
}

}  // namespace glintar::arbiter
