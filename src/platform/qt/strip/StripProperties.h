#pragma once

class QWindow;

namespace glintar::platform {

/// Tells the window manager what the strip is: on all desktops and in no list of windows. To be called each time before
/// the window is shown: the window manager takes the properties away when it is hidden.
void writeStripProperties(const QWindow& window);

/// Says the same once more to the window manager itself, after the window was shown: where it had been hidden shortly
/// before, the window manager may have taken away what had just been written.
void requestStripProperties(const QWindow& window);

}  // namespace glintar::platform
