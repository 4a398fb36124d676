#pragma once

#include "menubar/Pill.h"
#include "menubar/ProgressImage.h"
#include "menubar/StatusLine.h"
#include "platform/DispatchGroup.h"
#include "platform/Lifetime.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"
#include "platform/StatusBar.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace glintar::platform {
struct Desktop;
struct Platform;
}  // namespace glintar::platform

namespace glintar::menubar {

class PillPainter;

/// The two items in the status bar: at its right end the program's icon, which opens the menu, and to its left the
/// price line, a row of pictures with the countdown before them. Main thread only; the pictures are drawn on the work
/// queue.
class StatusItems {
public:
    struct Callbacks {
        std::function<void()> redisplay;  ///< icons arrived or the desktop looks different: show the last quotes again
        std::function<void()> quit;       ///< the user wants the program to end
    };

    StatusItems(platform::Platform& platform, platform::Desktop& desktop, Callbacks callbacks);
    StatusItems(const StatusItems&) = delete;
    StatusItems& operator=(const StatusItems&) = delete;
    ~StatusItems();

    /// Shows the line soon, when its pictures are drawn, unless a newer line or `hide` comes before that. An empty line
    /// takes the item's place in the bar away and leaves its tooltip. `tooltip` is none when it is to stay as it was.
    void renderStatusItem(StatusLine line, std::optional<std::string> tooltip);

    /// Takes the price line out of the bar, and puts it back as it was.
    void hide();
    void show();

    /// As a click on the icon does.
    void openMenu();

    /// Whether the countdown has a place: not beside an empty line, nor while the line is hidden.
    [[nodiscard]] bool showsProgress() const { return !isHidden_ && !isLineEmpty(); }

    /// Shows how much of the time to the next refresh has passed (`elapsed`, 0 to 1, of `interval`), and tells how long
    /// that stays true to half a pixel: nobody need call before.
    platform::Seconds showProgress(double elapsed, platform::Seconds interval);

private:
    struct Render;

    void setUpMenu();
    void drawAnchor();
    void showLoading();
    template <class Part>
    void renderPart(const std::shared_ptr<Render>& render, platform::DispatchGroup group, const Part& part,
                    const std::string& key, platform::ImagePtr& picture);
    void compose(const Render& render);
    void onLookChanged();
    [[nodiscard]] bool isLineEmpty() const;
    [[nodiscard]] Look look() const;
    [[nodiscard]] std::shared_ptr<PillPainter> makePainter();

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    Callbacks callbacks_;
    std::unique_ptr<platform::StatusItem> anchorItem_;
    std::unique_ptr<platform::StatusItem> displayItem_;
    std::shared_ptr<PillPainter> painter_;  ///< held weakly by what is under way; another one for every look
    Countdown countdown_;
    std::shared_ptr<const Render> wanted_;  ///< the newest line; none before the first
    std::uint64_t generation_ = 0;          ///< of `wanted_`; what is under way for an older one comes to nothing
    bool isHidden_ = false;
    std::unique_ptr<platform::NotificationCenter::Observation> appearanceObservation_;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::menubar
