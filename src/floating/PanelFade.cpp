#include "floating/PanelFade.h"

namespace glintar::floating {

namespace {

constexpr std::int64_t kStillLooks = 500;  // ten seconds
constexpr double kStep = 0.05;

}  // namespace

bool PanelFade::look(const platform::Point& pointer) {
    if (isElsewhere(pointer)) {
        lastMouseLocation_ = pointer;
        idleCounter_ = 0;
        restore();
        return true;
    }
    ++idleCounter_;
    if (idleCounter_ > kStillLooks && !isComplete()) {
        const double next = alpha_ - kStep;
        alpha_ = next < kStep / 2 ? 0 : next;  // twenty steps end at 0, whatever the rounding
    }
    return false;
}

}  // namespace glintar::floating
