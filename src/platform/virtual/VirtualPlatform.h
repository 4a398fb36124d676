#pragma once

#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/Registry.h"
#include "platform/WorkQueue.h"
#include "platform/virtual/VirtualHttpClient.h"
#include "platform/virtual/VirtualRunLoop.h"
#include "platform/virtual/VirtualStores.h"

namespace glintar::platform {

/// Background work that runs on the virtual run loop, as a step of its own.
class VirtualWorkQueue final : public WorkQueue {
public:
    explicit VirtualWorkQueue(RunLoop& runLoop) : runLoop_(runLoop) {}
    void async(Task task) override { runLoop_.post(std::move(task)); }
    void asyncAfter(Duration delay, Task task) override { runLoop_.postAfter(delay, std::move(task)); }

private:
    RunLoop& runLoop_;
};

/// A whole machine in memory, for tests.
class VirtualPlatform {
public:
    [[nodiscard]] Platform& platform() { return platform_; }
    void advance(Duration duration) { runLoop.advance(duration); }

    VirtualRunLoop runLoop;
    VirtualWorkQueue workQueue{runLoop};
    VirtualHttpClient http{runLoop};
    VirtualPreferences preferences;
    VirtualSecretStore secrets;
    NotificationCenter notifications;
    VirtualDirectories directories;
    VirtualFiles files;
    VirtualBundle bundle{files};
    VirtualConsole console;
    VirtualEntropy entropy;
    VirtualLocalTime localTime;
    Registry registry;

private:
    Platform platform_{runLoop, workQueue, http,    preferences, secrets,   notifications, directories,
                       bundle,  files,     console, entropy,     localTime, registry};
};

}  // namespace glintar::platform
