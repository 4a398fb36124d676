#pragma once

#include "support/Display.h"

#include <cstdlib>
#include <string>

namespace glintar::bench {

/// A screen without a monitor, on the message bus of the bench, where the key ring is.
class DesktopScene {
public:
    explicit DesktopScene(const std::string& screen = "1280x800x24") : display_(screen, test::Display::Bus::None) {
        if (!bus_.empty()) {
            ::setenv("DBUS_SESSION_BUS_ADDRESS", bus_.c_str(), 1);  // the display takes it away, and puts it back
        }
    }

    [[nodiscard]] test::Display& display() { return display_; }

private:
    static std::string ownBus() {
        const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
        return address ? address : "";
    }

    const std::string bus_ = ownBus();
    test::Display display_;
};

}  // namespace glintar::bench
