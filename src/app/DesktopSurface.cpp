#include "app/DesktopSurface.h"

namespace glintar::app {

void DesktopSurface::show(menubar::DisplayMode mode) {
    if (mode == menubar::DisplayMode::Panel) {
        floatingController_.showPanel();
        items_.hide();
    } else {
        floatingController_.hidePanel();
        items_.show();
    }
}

void DesktopSurface::showLine(const menubar::StatusLine& line, std::optional<std::string> tooltip) {
    if (tooltip) {
        tooltip->insert(0, mark_);
    }
    items_.renderStatusItem(line, std::move(tooltip));
}

void DesktopSurface::updatePanel(menubar::PanelData data) {
    floatingController_.updateData(std::move(data.coins), std::move(data.quotes), data.gasPrice, data.nextFetchTime);
}

}  // namespace glintar::app
