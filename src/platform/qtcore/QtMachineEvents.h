#pragma once

#include "platform/posix/NetworkWatch.h"
#include "platform/posix/WakeWatch.h"

#include <QSocketNotifier>

#include <optional>

namespace glintar::platform {

/// Posts `kMachineResumed` and `kNetworkCameBack` as long as it lives, without a display and without a bus. The loop
/// sleeps while nothing happens. Needs a QCoreApplication; main thread only.
class QtMachineEvents {
public:
    QtMachineEvents(RunLoop& loop, NotificationCenter& notifications);

private:
    WakeWatch wake_;
    NetworkWatch network_;
    std::optional<QSocketNotifier> wakeNotifier_;
    std::optional<QSocketNotifier> networkNotifier_;
};

}  // namespace glintar::platform
