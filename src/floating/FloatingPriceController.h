#pragma once

#include "floating/CountdownRing.h"
#include "floating/FloatingContent.h"
#include "floating/FloatingView.h"
#include "floating/PanelFade.h"
#include "platform/Geometry.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"

#include <memory>
#include <optional>
#include <vector>

namespace glintar::platform {
struct Desktop;
struct Platform;
class Overlay;
}  // namespace glintar::platform

namespace glintar::floating {

/// The small panel that shows the user's coins beside the mouse pointer. Fifty times a second it looks where the
/// pointer is and follows it; when that has been still for ten seconds, it fades away until the next movement. Where
/// the desktop does not tell where the pointer is, the panel rests below the status bar and never fades. Main thread
/// only.
class FloatingPriceController {
public:
    /// Makes no window yet. Both must outlive the controller.
    FloatingPriceController(platform::Platform& platform, platform::Desktop& desktop);
    FloatingPriceController(const FloatingPriceController&) = delete;
    FloatingPriceController& operator=(const FloatingPriceController&) = delete;
    ~FloatingPriceController();

    /// What a refresh brought, drawn at once where it can be seen. Of several within a fiftieth of a second, the first
    /// and the last are drawn. The panel takes on the size of its content; its bottom left corner stays.
    void updateData(std::vector<config::Coin> coins, market::MarketDataMap quotes,
                    std::optional<market::NetworkFee> gasPrice, platform::Instant nextFetchTime);

    /// Shows the panel, at the pointer if that has moved meanwhile. A panel that had faded away becomes visible when
    /// the pointer next moves. Does nothing to one that is shown.
    void showPanel();

    /// The window is kept for the next time.
    void hidePanel();

    /// The display settings may have changed. A new offset counts from the pointer's next movement.
    void reloadSettings();

private:
    /// The one that stays when the panel takes on another size.
    enum class Corner { BottomLeft, TopLeft };

    void setupWindow();
    void trackMouse();
    void moveTo(const platform::Point& origin);
    void moveBeside(const platform::Point& pointer);
    void restBelowBar();
    void tellThatPointerIsHidden();

    void loadSettings();
    /// The one step after any change: picture and size, opacity, on or off the screen, the timer for the ring.
    void present(Corner kept = Corner::BottomLeft);
    void draw(Corner kept);
    void presentUpdate();
    void countDown();
    [[nodiscard]] bool canBeSeen() const { return timer_ && !fade_.isComplete(); }
    [[nodiscard]] bool belongsOnScreen() const;

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    FloatingView view_;
    std::unique_ptr<platform::Overlay> window_;
    std::optional<CountdownRing> ring_;  ///< as old as the window
    PanelFade fade_;
    FloatingState state_;
    double offsetDistance_ = 0;
    platform::Instant nextUpdate_;  ///< when the next update may be drawn

    // Each of these calls us and ends with us.
    platform::TimerHandle timer_;        ///< only while the panel is shown
    platform::TimerHandle nextDrawing_;  ///< of the ring's next pixel or of an update, only while it can be seen
    std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> observations_;
};

}  // namespace glintar::floating
