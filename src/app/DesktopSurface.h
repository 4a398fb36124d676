#pragma once

#include "floating/FloatingPriceController.h"
#include "menubar/StatusItems.h"
#include "presenter/StatusSurface.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace glintar::app {

/// What the presenter shows on a desktop: the pills in the status bar, or the panel that follows the pointer.
class DesktopSurface final : public presenter::StatusSurface {
public:
    using Requests = menubar::StatusItems::Callbacks;

    /// `mark` stands at the beginning of the line's tooltip; empty for real prices.
    DesktopSurface(platform::Platform& platform, platform::Desktop& desktop, Requests requests, std::string mark)
        : items_(platform, desktop, std::move(requests)),
          floatingController_(platform, desktop),
          mark_(std::move(mark)) {}

    void show(presenter::DisplayMode mode) override;
    void showLine(const presenter::StatusLine& line, std::optional<std::string> tooltip) override;
    void updatePanel(presenter::PanelData data) override;
    void refreshCompleted() override {}
    bool showsProgress() const override { return items_.showsProgress(); }
    platform::Seconds showProgress(const presenter::RefreshProgress& progress) override {
        return items_.showProgress(progress.elapsed, progress.interval);
    }
    bool canBeCovered() const override { return true; }
    void checkVisibility() override { items_.checkVisibility(); }
    void updateDashboardItem(std::string_view title, bool enabled) override {
        items_.updateDashboardItem(std::string(title), enabled);
    }

    void openMenu() { items_.openMenu(); }
    [[nodiscard]] const menubar::StatusItems& items() const { return items_; }

private:
    menubar::StatusItems items_;
    floating::FloatingPriceController floatingController_;
    std::string mark_;
};

}  // namespace glintar::app
