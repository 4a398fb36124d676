#include "platform/secret/PrivateBus.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

namespace glintar::platform {

namespace {

constexpr const char* kSecrets = "org.freedesktop.secrets";
constexpr const char* kService = "org.freedesktop.Secret.Service";
constexpr const char* kServicePath = "/org/freedesktop/secrets";
constexpr const char* kLoginRing = "/org/freedesktop/secrets/collection/login";
constexpr const char* kPassword = "open sesame";

GlibObject<GDBusConnection> connectTo(const std::string& address) {
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return GlibObject<GDBusConnection>(
        g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr));
}

bool isOwned(GDBusConnection* bus, const char* name) {
    gboolean isOwned = FALSE;
    GVariant* const answer = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
        g_variant_new("(s)", name), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (answer != nullptr) {
        g_variant_get(answer, "(b)", &isOwned);
        g_variant_unref(answer);
    }
    return isOwned != 0;
}

GVariant* attributes(std::initializer_list<std::pair<const char*, const char*>> pairs) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
    for (const auto& [name, value] : pairs) {
        g_variant_builder_add(&builder, "{ss}", name, value);
    }
    return g_variant_builder_end(&builder);
}

// GIO's thread runs the filters, and hands things to it under locks that ThreadSanitizer does not see.
std::mutex peersMutex;

}  // namespace

PrivateBus::PrivateBus() {
    setenv("DBUS_SESSION_BUS_ADDRESS", address().c_str(), 1);
    for (const char* const name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
        setenv(name, bus_.folder().c_str(), 1);
    }
    for (const char* const name : {"GNOME_KEYRING_CONTROL", "SSH_AUTH_SOCK"}) {
        unsetenv(name);
    }
}

PrivateBus::~PrivateBus() {
    stop();
}

void PrivateBus::stop() {
    stopKeyRing();
    connection_.reset();
    bus_.stop();
}

void PrivateBus::start() {
    bus_.start();
    connection_ = connectTo(address());
    ASSERT_TRUE(connection_);
}

void PrivateBus::startKeyRing(Ring ring) {
    if (!connection_) {
        start();
    }
    const char* const unlock = ring == Ring::Open ? "--unlock" : nullptr;
    const auto flags = static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                                     G_SUBPROCESS_FLAGS_STDERR_SILENCE);
    ring_.reset(g_subprocess_new(flags, nullptr, "gnome-keyring-daemon", "--foreground", "--components=secrets", unlock,
                                 nullptr));
    ASSERT_TRUE(ring_);
    GOutputStream* const input = g_subprocess_get_stdin_pipe(ring_.get());
    g_output_stream_write_all(input, kPassword, ring == Ring::Open ? std::strlen(kPassword) : 0, nullptr, nullptr,
                              nullptr);
    g_output_stream_close(input, nullptr, nullptr);
    ASSERT_TRUE(test::eventually([this] { return isOwned(connection_.get(), kSecrets); }));
}

void PrivateBus::stopKeyRing() {
    if (ring_ != nullptr) {
        g_subprocess_force_exit(ring_.get());
        g_subprocess_wait(ring_.get(), nullptr, nullptr);
        ring_.reset();
        EXPECT_TRUE(test::eventually([this] { return !isOwned(connection_.get(), kSecrets); }));
    }
}

void PrivateBus::unlockKeyRing() {
    ask(kServicePath, "org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface", "UnlockWithMasterPassword",
        g_variant_new("(o@(oayays))", kLoginRing, secretOf(kPassword)));
}

void PrivateBus::lockKeyRing() {
    const char* const rings[] = {kLoginRing};
    ask(kServicePath, kService, "Lock", g_variant_new("(@ao)", g_variant_new_objv(rings, 1)));
}

void PrivateBus::writeElsewhere(const char* service, const char* account, const char* secret) {
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Attributes",
                          attributes({{"service", service}, {"account", account}}));
    ask(kLoginRing, "org.freedesktop.Secret.Collection", "CreateItem",
        g_variant_new("(a{sv}@(oayays)b)", &properties, secretOf(secret), TRUE));
}

std::size_t PrivateBus::itemCount(const char* service) {
    const auto answer =
        ask(kServicePath, kService, "SearchItems", g_variant_new("(@a{ss})", attributes({{"service", service}})));
    const Variant unlocked(g_variant_get_child_value(answer.get(), 0));
    return g_variant_n_children(unlocked.get());
}

PrivateBus::Variant PrivateBus::ask(const char* path, const char* interface, const char* method, GVariant* arguments) {
    GError* error = nullptr;
    Variant answer(g_dbus_connection_call_sync(connection_.get(), kSecrets, path, interface, method, arguments, nullptr,
                                               G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error));
    if (error != nullptr) {
        ADD_FAILURE() << method << ": " << error->message;
        g_clear_error(&error);
    }
    return answer;
}

GVariant* PrivateBus::secretOf(const char* text) {
    const auto opened =
        ask(kServicePath, kService, "OpenSession", g_variant_new("(sv)", "plain", g_variant_new_string("")));
    const char* session = nullptr;
    g_variant_get(opened.get(), "(v&o)", nullptr, &session);
    return g_variant_new("(o@ay@ays)", session, g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, "", 0, 1),
                         g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, text, std::strlen(text), 1), "text/plain");
}

DeafPeer::DeafPeer(const PrivateBus& bus, const char* name, Manner manner) : connection_(connectTo(bus.address())) {
    {
        const std::lock_guard lock(peersMutex);
        manner_ = manner;
        calls_ = 0;
    }
    g_dbus_connection_add_filter(connection_.get(), filter, this, nullptr);
    g_bus_own_name_on_connection(connection_.get(), name, G_BUS_NAME_OWNER_FLAGS_NONE, nullptr, nullptr, nullptr,
                                 nullptr);
    EXPECT_TRUE(test::eventually([&] { return isOwned(connection_.get(), name); }));
}

DeafPeer::~DeafPeer() {
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    const std::lock_guard lock(peersMutex);
}

int DeafPeer::calls() const {
    const std::lock_guard lock(peersMutex);
    return calls_;
}

GDBusMessage* DeafPeer::filter(GDBusConnection* connection, GDBusMessage* message, gboolean isIncoming, gpointer peer) {
    if (isIncoming == 0 || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        return message;
    }
    const std::lock_guard lock(peersMutex);
    auto& self = *static_cast<DeafPeer*>(peer);
    ++self.calls_;
    if (self.manner_ == Manner::Refusing) {
        const GlibObject<GDBusMessage> refusal(
            g_dbus_message_new_method_error(message, "org.freedesktop.DBus.Error.AccessDenied", "no"));
        g_dbus_connection_send_message(connection, refusal.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    }
    g_object_unref(message);
    return nullptr;
}

}  // namespace glintar::platform
