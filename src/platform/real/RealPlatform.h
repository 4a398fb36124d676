#pragma once

#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/Registry.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/posix/InstalledBundle.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixMachine.h"
#include "platform/posix/Termination.h"
#include "platform/posix/ThreadWorkQueue.h"
#include "platform/posix/XdgDirectories.h"
#include "platform/qtcore/QtMachineEvents.h"
#include "platform/qtcore/QtPreferences.h"
#include "platform/qtcore/QtRunLoop.h"
#include "platform/secret/LoadedSecretStore.h"
#include "platform/terminal/TerminalScreen.h"

#include <QSocketNotifier>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace glintar::platform {

/// The real machine without its screen. One a process, made after `Termination` and Qt's application object and gone
/// before them. Threads start when they are first needed.
class RealPlatform {
public:
    struct Options {
        std::string configServer;                 ///< address; empty means none
        bool looksUpSecrets = true;               ///< otherwise there are none
        std::filesystem::path replacements = {};  ///< of shipped files; empty for none
    };

    explicit RealPlatform(const Options& options);
    RealPlatform(const RealPlatform&) = delete;
    RealPlatform& operator=(const RealPlatform&) = delete;
    ~RealPlatform();

    /// Runs the loop until `exit`, and returns its status; at once when `exit` came first.
    int exec();
    void exit(int status);

    /// Ends the background work, which uses what the caller is about to destroy.
    void endWork() { workQueue_.end(); }

    /// Runs on the main thread at an interrupt or terminate signal.
    std::function<void()> onTerminate;

    [[nodiscard]] Platform& platform() { return platform_; }

    /// From now on the platform tells of sleep, the network and preferences that others write.
    void watch();
    [[nodiscard]] TerminalScreen& screen() { return screen_; }

private:
    // Destroyed from the last to the first: what is shared goes first, then whoever may still call into it.
    std::optional<int> exitStatus_;
    QSocketNotifier termination_{Termination::descriptor(), QSocketNotifier::Read};
    TerminalScreen screen_{Termination::descriptor()};
    QtRunLoop runLoop_;
    PosixFiles files_;
    XdgDirectories directories_;
    InstalledBundle bundle_;
    KernelEntropy entropy_;
    ZoneLocalTime localTime_;
    NotificationCenter notifications_;
    QtPreferences preferences_;
    ThreadWorkQueue workQueue_;
    LoadedSecretStore secrets_;
    CurlHttpClient http_;
    Registry registry_;
    Platform platform_;
    std::optional<QtMachineEvents> events_;
};

}  // namespace glintar::platform
