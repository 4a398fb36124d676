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

void DesktopSurface::updatePanel(menubar::PanelData data) {
    floatingController_.updateData(std::move(data.coins), std::move(data.quotes), data.gasPrice, data.nextFetchTime);
}

}  // namespace glintar::app
