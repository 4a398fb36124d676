#pragma once

#include "platform/xcb/XcbConnection.h"

#include <QSocketNotifier>

namespace glintar::platform {

/// Reads the events of our own connection in Qt's event loop, until the X server goes away.
class XcbReader {
public:
    /// `connection` outlives it.
    explicit XcbReader(XcbConnection& connection) : notifier_(connection.descriptor(), QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this, &connection] {
            // At its end a socket stays readable for ever.
            notifier_.setEnabled(connection.readEvents());
        });
    }

private:
    QSocketNotifier notifier_;
};

}  // namespace glintar::platform
