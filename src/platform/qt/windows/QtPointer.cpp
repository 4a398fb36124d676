#include "platform/qt/windows/QtPointer.h"

namespace glintar::platform {

QtPointer::QtPointer(XcbConnection& connection, const QtScreens& screens)
    : screens_(screens),
      pointer_(connection),
      isSeenEverywhere_(pointer_.isSeenEverywhere() && !screens.areOfWayland()) {}

std::optional<Point> QtPointer::position() {
    const auto pixel = isSeenEverywhere_ ? pointer_.position() : std::nullopt;
    return pixel ? std::optional(screens_.map().toPoints(*pixel)) : std::nullopt;
}

}  // namespace glintar::platform
