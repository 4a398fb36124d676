#include "app/DesktopSurface.h"

namespace glintar::app {

void DesktopSurface::show(presenter::DisplayMode mode) {
    if (mode == presenter::DisplayMode::Panel) {
        floatingController_.showPanel();
        items_.hide();
    } else {
        floatingController_.hidePanel();
        items_.show();
    }
}

void DesktopSurface::showLine(const presenter::StatusLine& line, std::optional<std::string> tooltip) {
    if (tooltip) {
        tooltip->insert(0, mark_);
    }
    items_.renderStatusItem(line, std::move(tooltip));
}

void DesktopSurface::updatePanel(presenter::PanelData data) {
    floatingController_.updateData(std::move(data.coins), std::move(data.quotes), data.gasPrice, data.nextFetchTime);
}

}  // namespace glintar::app
