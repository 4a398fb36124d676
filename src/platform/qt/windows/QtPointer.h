#pragma once

#include "platform/Pointer.h"
#include "platform/qt/windows/QtScreens.h"
#include "platform/xcb/XcbConnection.h"

namespace glintar::platform {

/// The pointer as the X server knows it: one round trip on our own connection, nothing else. None under Wayland, where
/// the server learns of the pointer only over windows of X programs.
class QtPointer final : public Pointer {
public:
    QtPointer(XcbConnection& connection, const QtScreens& screens);

    std::optional<Point> position() override;
    bool isSeenEverywhere() const override { return isSeenEverywhere_; }

private:
    XcbConnection& connection_;
    const QtScreens& screens_;
    bool isSeenEverywhere_;
};

}  // namespace glintar::platform
