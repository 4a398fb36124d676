#pragma once

#include "platform/posix/Descriptor.h"

#include <QSocketNotifier>

#include <functional>
#include <initializer_list>
#include <optional>

namespace glintar::platform {

/// Calls back on the main thread for each signal of the set, which does nothing else any more. Made before the first
/// thread, after the QCoreApplication. The signals stay blocked afterwards: a late one must not end the program.
class QtSignals {
public:
    QtSignals(std::initializer_list<int> numbers, std::function<void(int signal)> onSignal);

private:
    Descriptor descriptor_;
    std::optional<QSocketNotifier> notifier_;
};

}  // namespace glintar::platform
