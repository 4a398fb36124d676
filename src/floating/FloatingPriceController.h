#pragma once

#include "floating/FloatingContent.h"
#include "floating/FloatingView.h"
#include "platform/Geometry.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace glintar::platform {
struct Desktop;
struct Platform;
class Window;
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

    /// What a refresh brought. The panel takes on the size of its content; its bottom left corner stays. Drawn once it
    /// can be seen.
    void updateData(std::vector<config::Coin> coins, market::MarketDataMap quotes, std::optional<double> gasPrice,
                    platform::Instant nextFetchTime);

    /// Leaves the panel as faded as it was: then it becomes visible when the pointer next moves.
    void showPanel();

    /// The window is kept for the next time.
    void hidePanel();

    /// The display settings may have changed. A new offset counts from the pointer's next movement.
    void reloadSettings();

private:
    void setupWindow();
    void catchUp(const std::optional<platform::Point>& pointer);
    void trackMouse();
    void follow(const platform::Point& pointer);
    void tellThatPointerIsHidden();
    void place(const std::optional<platform::Point>& pointer);
    void moveTo(const platform::Point& origin);
    void setAlpha(double alpha);
    void arrange();
    [[nodiscard]] bool belongsOnScreen() const;
    [[nodiscard]] bool canBeSeen() const { return timer_ && alpha_ > 0; }
    void countDown();
    enum class Corner { BottomLeft, TopLeft };
    void refresh(Corner kept = Corner::BottomLeft);

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    FloatingView view_;
    std::unique_ptr<platform::Window> window_;
    platform::Point lastMouseLocation_;
    std::int64_t idleCounter_ = 0;
    FloatingState state_;
    double offsetDistance_ = 0;
    double timeProgress_ = 1;
    double alpha_ = 1;

    // Each of these calls us and ends with us.
    platform::TimerHandle timer_;           ///< only while the panel is shown
    platform::TimerHandle countdownTimer_;  ///< for the next pixel of the ring, only while it can be seen
    std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> observations_;
};

}  // namespace glintar::floating
