#pragma once

#include "platform/posix/Descriptor.h"

#include <QSocketNotifier>

#include <functional>
#include <initializer_list>
#include <optional>

namespace glintar::platform {

/// Calls back on the main thread for each signal of the set, which does nothing else any more. Made after the
/// QCoreApplication, and before the first thread unless the signals were blocked before that. The signals stay blocked
/// afterwards: a late one must not end the program.
class QtSignals {
public:
    QtSignals(std::initializer_list<int> numbers, std::function<void(int signal)> onSignal);

    static void block(std::initializer_list<int> numbers);

private:
    Descriptor descriptor_;
    std::optional<QSocketNotifier> notifier_;
};

}  // namespace glintar::platform
