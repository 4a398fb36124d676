#pragma once

#include "platform/secret/GlibHandles.h"
#include "support/TemporaryFolder.h"

#include <gio/gio.h>

#include <functional>
#include <string>

namespace glintar::platform {

/// Whether the condition comes true within some seconds.
[[nodiscard]] bool waitFor(const std::function<bool()>& condition);

/// A message bus of one test's own, which starts no service by itself. While it lives, the environment names it as the
/// session's bus, and an empty temporary folder as home and runtime directory.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();

    void start();
    void stop();

    /// GNOME Keyring, whose login key ring has a password that opens it at once or not at all.
    enum class Ring { Open, Locked };
    void startKeyRing(Ring ring);
    void stopKeyRing();
    void unlockKeyRing();  ///< as if the user had typed the password
    void lockKeyRing();

    /// What another program does.
    void writeElsewhere(const char* service, const char* account, const char* secret);
    [[nodiscard]] std::size_t itemCount(const char* service);

    [[nodiscard]] const std::string& address() const { return address_; }

private:
    using Variant = std::unique_ptr<GVariant, GlibRelease<g_variant_unref>>;
    Variant ask(const char* path, const char* interface, const char* method, GVariant* arguments);
    /// The text as the service takes secrets: in a session, not encrypted.
    GVariant* secretOf(const char* text);

    test::TemporaryFolder folder_;
    std::string address_;
    GlibObject<GSubprocess> bus_;
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
