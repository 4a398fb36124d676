#pragma once

namespace glintar::platform {

class Clipboard;
class DesktopEvents;
class Graphics;
class LoginItem;
class Pointer;
class StatusBar;
class WindowServer;
class Workspace;

/// Everything the core asks of a machine with a screen, beside `Platform`. Components may keep the references.
struct Desktop {
    Graphics& graphics;
    DesktopEvents& events;
    StatusBar& statusBar;
    Pointer& pointer;
    WindowServer& windows;
    Clipboard& clipboard;
    Workspace& workspace;
    LoginItem& loginItem;
};

}  // namespace glintar::platform
