#pragma once

#include "platform/secret/GlibHandles.h"
#include "support/MessageBus.h"

#include <gio/gio.h>

#include <string>

namespace glintar::platform {

/// A message bus with a key ring. While it lives, the environment names it as the session's bus, and its folder as home
/// and runtime directory.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();

    void start();
    void stop();

    /// GNOME Keyring, whose login key ring has a password that opens it at once or not at all; starts the bus where it
    /// is not up.
    enum class Ring { Open, Locked };
    void startKeyRing(Ring ring);
    void stopKeyRing();
    void unlockKeyRing();  ///< as if the user had typed the password
    void lockKeyRing();

    /// What another program does.
    void writeElsewhere(const char* service, const char* account, const char* secret);
    [[nodiscard]] std::size_t itemCount(const char* service);

    [[nodiscard]] std::string address() const { return bus_.address(); }

private:
    using Variant = std::unique_ptr<GVariant, GlibRelease<g_variant_unref>>;
    Variant ask(const char* path, const char* interface, const char* method, GVariant* arguments);
    /// The text as the service takes secrets: in a session, not encrypted.
    GVariant* secretOf(const char* text);

    test::MessageBus bus_;
    GlibObject<GSubprocess> ring_;
    GlibObject<GDBusConnection> connection_;  ///< another program's
};

/// Owns a name on a bus and counts the calls it gets; it answers none, or refuses all.
class DeafPeer {
public:
    enum class Manner { Silent, Refusing };
    DeafPeer(const PrivateBus& bus, const char* name, Manner manner);
    ~DeafPeer();

    [[nodiscard]] int calls() const;

private:
    static GDBusMessage* filter(GDBusConnection* connection, GDBusMessage* message, gboolean isIncoming, gpointer peer);

    Manner manner_;
    int calls_ = 0;
    GlibObject<GDBusConnection> connection_;
};

}  // namespace glintar::platform
