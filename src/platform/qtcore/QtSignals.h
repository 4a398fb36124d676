#pragma once

#include <QSocketNotifier>

#include <functional>
#include <initializer_list>

namespace glintar::platform {

/// Signals that are asked of the program while it runs, told on the main thread. They have a handler rather than being
/// blocked: programs that this one starts have neither.
class QtSignals {
public:
    /// From now on these signals wait to be told. First in main, but for `Termination`.
    static void take(std::initializer_list<int> numbers);

    /// Holds them back for the program that this one is about to become by exec, which takes them.
    static void hold(std::initializer_list<int> numbers);

    /// Made after the QCoreApplication; one a process, and only after `take`.
    explicit QtSignals(std::function<void(int signal)> onSignal);

private:
    QSocketNotifier notifier_;
};

}  // namespace glintar::platform
