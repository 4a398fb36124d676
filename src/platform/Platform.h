#pragma once

namespace glintar::platform {

class Bundle;
class Console;
class Directories;
class Entropy;
class Files;
class HttpClient;
class LocalTime;
class NotificationCenter;
class Preferences;
class Registry;
class RunLoop;
class SecretStore;
class WorkQueue;

/// Everything the core asks of a machine. Components take it in their constructor and may keep the reference: it
/// outlives them.
struct Platform {
    RunLoop& runLoop;
    WorkQueue& workQueue;
    HttpClient& http;
    Preferences& preferences;
    SecretStore& secrets;
    NotificationCenter& notifications;
    Directories& directories;
    Bundle& bundle;
    Files& files;
    Console& console;
    Entropy& entropy;
    LocalTime& localTime;
    Registry& registry;
};

}  // namespace glintar::platform
