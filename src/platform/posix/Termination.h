#pragma once

namespace glintar::platform {

/// Catches SIGINT, SIGTERM and SIGHUP as long as it lives: first thing in main, but for the standard streams, and last
/// to go. One a process.
///
/// From such a signal on, or from `announceEnd` on, the program has 900 ms to go: whatever it then still waits for (an
/// X server or a bus that stands still, say), it ends. SIGPIPE is ignored, so that writing to a closed pipe is an error
/// like any other.
class Termination {
public:
    Termination();
    Termination(const Termination&) = delete;
    Termination& operator=(const Termination&) = delete;
    ~Termination();

    /// Holds the signals back, also for the program that this process becomes by exec, until the next `Termination`.
    /// False when one has come already.
    [[nodiscard]] bool block();
    void unblock();

    /// This process is about to become another program by exec: signals wait for its `Termination`, and the time that
    /// this one had to end does not run on in it.
    static void handOver();

    /// The status to end with when there is no time to end in order. 0 before the first call.
    void setStatus(int status);

    /// The program ends for another reason.
    static void announceEnd(int status);

    /// Can be read from a signal or `announceEnd` on, and is never to be read: for those who wait. -1 when none is
    /// alive.
    [[nodiscard]] static int descriptor();
};

}  // namespace glintar::platform
