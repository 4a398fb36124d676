#pragma once

#include "menubar/DisplaySpace.h"
#include "menubar/LineRenderer.h"
#include "menubar/ProgressImage.h"
#include "menubar/StatusMenu.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"
#include "platform/StatusBar.h"
#include "presenter/StatusLine.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace glintar::platform {
struct Desktop;
struct Platform;
}  // namespace glintar::platform

namespace glintar::menubar {

/// The two items in the status bar: at its right end the program's icon, which opens the menu, and to its left the
/// price line, a row of pictures with the countdown before them. Main thread only; the pictures are drawn on the work
/// queue.
class StatusItems {
public:
    struct Callbacks {
        std::function<void()> redisplay;  ///< icons arrived or the desktop looks different: show the last quotes again
        std::function<void()> pricePanelClicked;  ///< either button went down and up on the line
        StatusMenu::Actions menu;
    };

    StatusItems(platform::Platform& platform, platform::Desktop& desktop, Callbacks callbacks);
    StatusItems(const StatusItems&) = delete;
    StatusItems& operator=(const StatusItems&) = delete;
    ~StatusItems();

    /// Shows the line once its pictures are drawn, unless a newer line or `hide` comes before. An empty line takes no
    /// room in the bar and keeps the tooltip. Without a `tooltip` the one that is shown stays.
    void renderStatusItem(presenter::StatusLine line, std::optional<std::string> tooltip);

    /// Takes the price line out of the bar, and puts it back as it was.
    void hide();
    void show();

    /// Opens the menu as a click on the icon does.
    void openMenu();
    void updateDashboardItem(std::string title, bool isEnabled) { menu_->setDashboard(std::move(title), isEnabled); }

    /// Looks whether the line has room and says so in the menu and, for coins that do not fit, in the tooltip. Does
    /// nothing while the line is hidden or empty.
    void checkVisibility();

    /// Where line and icon are on screen; empty while they are not.
    [[nodiscard]] platform::Rect lineFrame() const { return displayItem_->frame(); }
    [[nodiscard]] platform::Rect iconFrame() const { return anchorItem_->frame(); }

    /// Whether the countdown can be seen: it goes with an empty or hidden line.
    [[nodiscard]] bool showsProgress() const { return !isHidden_ && !isLineEmpty(); }

    /// Shows how much of the time to the next refresh has passed (`elapsed`, 0 to 1, of `interval`), and tells how long
    /// the picture stays the same to half a pixel.
    platform::Seconds showProgress(double elapsed, platform::Seconds interval);

private:
    void setUpMenu(StatusMenu::Actions actions);
    void setToolTip();
    void drawAnchor();
    void showLoading();
    void showTitle(LineTitle title);
    void onThemeChanged();
    [[nodiscard]] bool isLineEmpty() const { return wanted_ && wanted_->isEmpty(); }

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    Callbacks callbacks_;
    std::unique_ptr<platform::StatusItem> anchorItem_;
    std::unique_ptr<platform::StatusItem> displayItem_;
    LineRenderer renderer_;
    Countdown countdown_;
    std::string sourceAtStart_;
    DisplaySpace space_;
    std::optional<StatusMenu> menu_;
    int coinsLeftOut_ = 0;                                 ///< for lack of room, at the last look
    std::shared_ptr<const presenter::StatusLine> wanted_;  ///< the newest line; none before the first
    std::optional<std::string> tooltip_;                   ///< that goes with it
    bool isHidden_ = false;
    std::unique_ptr<platform::NotificationCenter::Observation> appearanceObservation_;
};

}  // namespace glintar::menubar
