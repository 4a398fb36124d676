#pragma once

#include "platform/Pointer.h"
#include "platform/qt/windows/QtScreens.h"
#include "platform/xcb/XcbPointer.h"

namespace glintar::platform {

/// The pointer as the X server knows it: one round trip on our own connection, nothing else. None under Wayland, where
/// the server hears of it over windows of X programs only.
class QtPointer final : public Pointer {
public:
    /// Keeps both references.
    QtPointer(XcbConnection& connection, const QtScreens& screens);

    std::optional<Point> position() override;
    bool isSeenEverywhere() const override { return isSeenEverywhere_; }

private:
    const QtScreens& screens_;
    XcbPointer pointer_;
    bool isSeenEverywhere_;
};

}  // namespace glintar::platform
