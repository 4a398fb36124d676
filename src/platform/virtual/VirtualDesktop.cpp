#include "platform/virtual/VirtualDesktop.h"

namespace glintar::platform {

namespace {

class VirtualItem final : public StatusItem {
public:
    explicit VirtualItem(std::shared_ptr<ItemState> state) : state_(std::move(state)) { state_->item = this; }
    ~VirtualItem() override { state_->item = nullptr; }

    void setLength(Length length) override { state_->length = length; }
    void setVisible(bool isVisible) override { state_->isVisible = isVisible; }
    void setImage(ImagePtr image) override {
        state_->image = std::move(image);
        ++state_->imagesSet;
    }
    void setTitle(AttributedText title, std::string description) override {
        state_->title = std::move(title);
        state_->description = std::move(description);
        ++state_->titlesSet;
    }
    void setToolTip(std::string text) override { state_->toolTip = std::move(text); }
    void setMenu(Menu menu) override { state_->menu = std::move(menu); }
    void popUpMenu(Point at) override { state_->menuShownAt = at; }
    Rect frame() const override { return state_->frame; }
    ItemSight sight() const override { return state_->sight; }

private:
    std::shared_ptr<ItemState> state_;
};

class VirtualWindow final : public Window {
public:
    explicit VirtualWindow(std::shared_ptr<WindowState> state) : state_(std::move(state)) { state_->window = this; }
    ~VirtualWindow() override {
        state_->window = nullptr;
        state_->isVisible = false;
    }

    void setView(std::unique_ptr<View> view) override {
        view_ = std::move(view);
        ++state_->viewsSet;
    }
    Size fittingSize() const override { return state_->fittingSize; }
    void setFrame(const Rect& frame) override { state_->frame = frame; }
    Rect frame() const override { return state_->frame; }
    void center() override { state_->isCentered = true; }
    void makeKeyAndOrderFront() override {
        state_->isVisible = true;
        ++state_->ordersFront;
    }
    void close() override {
        if (std::exchange(state_->isVisible, false)) {
            if (const auto told = onClosed) {  // it may destroy us
                told();
            }
        }
    }
    bool isVisible() const override { return state_->isVisible; }
    bool isTranslucent() const override { return state_->isTranslucent; }

private:
    std::shared_ptr<WindowState> state_;
    std::unique_ptr<View> view_;
};

class VirtualAlert final : public Alert {
public:
    explicit VirtualAlert(std::shared_ptr<AlertState> state) : state_(std::move(state)) {}
    ~VirtualAlert() override { state_->isShown = false; }

private:
    std::shared_ptr<AlertState> state_;
};

}  // namespace

std::unique_ptr<StatusItem> VirtualStatusBar::addItem(StatusItem::Length length) {
    auto state = std::make_shared<ItemState>();
    state->length = length;
    items.push_back(state);
    return std::make_unique<VirtualItem>(std::move(state));
}

void VirtualStatusBar::setScale(double scale) {
    pixelsPerPoint = scale;
    if (onScaleChanged) {
        onScaleChanged();
    }
}

void VirtualEvents::setAppearance(Appearance appearance) {
    appearance_ = appearance;
    notifications_.post(kAppearanceChanged);
}

void VirtualOverlay::setPicture(ImagePtr newPicture, double newMargin) {
    picture = std::move(newPicture);
    margin = newMargin;
    ++picturesSet;
}

void VirtualOverlay::setFrameOrigin(const Point& origin) {
    frame_.x = origin.x;
    frame_.y = origin.y;
    ++moves;
}

void VirtualOverlay::orderFront() {
    isShown_ = true;
    frameWhenShown = frame_;
    pictureWhenShown = picture;
    ++ordersFront;
}

std::unique_ptr<Window> VirtualWindowServer::makeWindow(Window::Frame frame, std::string title) {
    auto state = std::make_shared<WindowState>();
    state->kind = frame;
    state->title = std::move(title);
    windows.push_back(state);
    return std::make_unique<VirtualWindow>(std::move(state));
}

std::unique_ptr<Alert> VirtualWindowServer::showAlert(AlertText text, std::function<void(std::size_t)> onAnswer) {
    auto state = std::make_shared<AlertState>(std::move(text), std::move(onAnswer));
    alerts.push_back(state);
    return std::make_unique<VirtualAlert>(std::move(state));
}

void AlertState::answer(std::size_t button) {
    if (std::exchange(isShown, false)) {
        onAnswer(button);
    }
}

std::unique_ptr<Overlay> VirtualWindowServer::makeOverlay(std::string title) {
    auto window = std::make_unique<VirtualOverlay>();
    window->title = std::move(title);
    overlays.push_back(window.get());
    return window;
}

void VirtualWindowServer::notify(std::string title, std::string text) {
    notices.emplace_back(std::move(title), std::move(text));
}

}  // namespace glintar::platform
