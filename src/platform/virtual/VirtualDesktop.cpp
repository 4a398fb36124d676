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

private:
    std::shared_ptr<ItemState> state_;
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

void VirtualWindow::setPicture(ImagePtr newPicture, double newMargin) {
    picture = std::move(newPicture);
    margin = newMargin;
    ++picturesSet;
}

void VirtualWindow::setFrameOrigin(const Point& origin) {
    frame_.x = origin.x;
    frame_.y = origin.y;
    ++moves;
}

void VirtualWindow::orderFront() {
    isShown_ = true;
    frameWhenShown = frame_;
    pictureWhenShown = picture;
    ++ordersFront;
}

std::unique_ptr<Window> VirtualWindowServer::makeOverlay(std::string title) {
    auto window = std::make_unique<VirtualWindow>();
    window->title = std::move(title);
    overlays.push_back(window.get());
    return window;
}

void VirtualWindowServer::notify(std::string title, std::string text) {
    notices.emplace_back(std::move(title), std::move(text));
}

}  // namespace glintar::platform
