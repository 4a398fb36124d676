#pragma once

namespace glintar::platform {

class Clipboard;
class DesktopEvents;
class Graphics;
class Pointer;
class StatusBar;
class WindowServer;

/// Everything the core asks of a machine with a screen, beside `Platform`. Components may keep the references.
struct Desktop {
    Graphics& graphics;
    DesktopEvents& events;
    StatusBar& statusBar;
    Pointer& pointer;
    WindowServer& windows;
    Clipboard& clipboard;
};

}  // namespace glintar::platform
