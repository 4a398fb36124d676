#pragma once

#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/Registry.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/posix/InstalledBundle.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixMachine.h"
#include "platform/posix/ThreadWorkQueue.h"
#include "platform/posix/XdgDirectories.h"
#include "platform/qtcore/QtPreferences.h"
#include "platform/qtcore/QtRunLoop.h"
#include "platform/qtcore/QtTermination.h"
#include "platform/secret/LoadedSecretStore.h"
#include "platform/terminal/TerminalConsole.h"
#include "platform/terminal/TerminalOutput.h"

#include <QCoreApplication>

#include <functional>
#include <optional>
#include <string>

namespace glintar::platform {

/// The real machine, without a display. One a process. Threads start when they are first needed.
class TerminalPlatform {
public:
    /// `argc` and `argv` are main's and must live as long.
    TerminalPlatform(int& argc, char** argv, std::string configServer);
    ~TerminalPlatform();

    /// Runs the loop until `exit`, and returns its status; at once when `exit` came first.
    int exec();
    void exit(int status);

    /// Runs on the main thread at an interrupt or terminate signal.
    std::function<void()> onTerminate;

    [[nodiscard]] Platform& platform() { return platform_; }
    [[nodiscard]] TextOutput& output() { return output_; }
    [[nodiscard]] QtPreferences& preferences() { return preferences_; }

private:
    // Destroyed from the last to the first: what is shared goes first, then whoever may still call into it.
    QCoreApplication application_;
    std::optional<int> exitStatus_;
    QtTermination termination_;
    TerminalScreen screen_{termination_.descriptor()};
    TerminalConsole console_{screen_};
    TerminalOutput output_{screen_};
    QtRunLoop runLoop_;
    PosixFiles files_;
    XdgDirectories directories_;
    InstalledBundle bundle_;
    KernelEntropy entropy_;
    ZoneLocalTime localTime_;
    NotificationCenter notifications_;
    QtPreferences preferences_;
    ThreadWorkQueue workQueue_;
    LoadedSecretStore secrets_{runLoop_, console_};
    CurlHttpClient http_;
    Registry registry_;
    Platform platform_;
};

}  // namespace glintar::platform
