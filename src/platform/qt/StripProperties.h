#pragma once

class QWindow;

namespace glintar::platform {

/// Tells the window manager what the strip is: on all desktops, above others, and in no list of windows. Before the
/// window is shown, each time: the window manager takes the properties away when it is hidden.
void writeStripProperties(const QWindow& window);

}  // namespace glintar::platform
