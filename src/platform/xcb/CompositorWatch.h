#pragma once

#include "platform/xcb/SelectionWatch.h"

namespace glintar::platform {

/// Whether a compositor owns the screen, so that windows can be translucent. Main thread only.
class CompositorWatch {
public:
    explicit CompositorWatch(XcbConnection& connection);

    [[nodiscard]] bool isRunning() const { return selection_.isOwned(); }

    /// Runs when a compositor has come or gone.
    [[nodiscard]] Listening onChange(std::function<void()> listener) {
        return selection_.onChange(std::move(listener));
    }

private:
    SelectionWatch selection_;
};

}  // namespace glintar::platform
