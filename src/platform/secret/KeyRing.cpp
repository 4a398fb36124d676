#include "platform/secret/KeyRing.h"

#include <fmt/format.h>

#include <utility>

namespace glintar::platform {

namespace {

constexpr const char* kServiceName = "org.freedesktop.secrets";
constexpr const char* kServiceInterface = "org.freedesktop.Secret.Service";
constexpr const char* kCollectionInterface = "org.freedesktop.Secret.Collection";
constexpr const char* kBusName = "org.freedesktop.DBus";

// The schema's name is written, but not searched for: GNOME Keyring finds nothing by it in a key ring that has been
// locked ever since it started, and the item would then seem absent.
const SecretSchema* schema() {
    static const SecretSchema instance = [] {
        SecretSchema made{};
        made.name = "org.glintar.Glintar";
        made.flags = SECRET_SCHEMA_DONT_MATCH_NAME;
        made.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return &instance;
}

// SecretService sets "g-bus-type" for itself and so always takes the connection that the whole process shares, which
// must not be closed. Here that property has no effect, and "g-connection" gets its way.
struct GlintarSecretService {
    SecretService parent;
};
struct GlintarSecretServiceClass {
    SecretServiceClass parent;
};
G_DEFINE_TYPE(GlintarSecretService, glintar_secret_service, SECRET_TYPE_SERVICE)

constexpr guint kBusTypeProperty = 1;

void glintar_secret_service_init(GlintarSecretService*) {}

void glintar_secret_service_class_init(GlintarSecretServiceClass* type) {
    auto* const object = G_OBJECT_CLASS(type);
    object->set_property = [](GObject*, guint, const GValue*, GParamSpec*) {};
    object->get_property = [](GObject*, guint, GValue*, GParamSpec*) {};
    g_object_class_override_property(object, kBusTypeProperty, "g-bus-type");
}

GlibTable attributesOf(const SecretKey& key) {
    return GlibTable(
        secret_attributes_build(schema(), "service", key.service.c_str(), "account", key.account.c_str(), nullptr));
}

/// The first item that is open; else whether there is a locked one.
SecretAnswer answerOf(GList* items) {
    SecretAnswer answer{SecretStatus::NotFound, {}};
    for (const GList* item = items; item != nullptr; item = item->next) {
        auto* const found = static_cast<SecretItem*>(item->data);
        if (secret_item_get_locked(found) != 0) {
            answer.status = SecretStatus::Locked;
            continue;
        }
        if (SecretValue* const value = secret_item_get_secret(found)) {
            gsize size = 0;
            const char* const bytes = secret_value_get(value, &size);
            answer = SecretAnswer::found({bytes, size});
            secret_value_unref(value);
            break;
        }
    }
    return answer;
}

}  // namespace

KeyRing::KeyRing(std::string address, std::function<void()> onSignal)
    : address_(std::move(address)), onSignal_(std::move(onSignal)) {}

KeyRing::~KeyRing() {
    disconnect();
}

void KeyRing::search(const SecretKey& key, Answered done) {
    withService([this, key, done = std::move(done)](SecretService* service) {
        if (service == nullptr) {
            done({SecretStatus::Unavailable, {}});
            return;
        }
        const auto flags = static_cast<SecretSearchFlags>(SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS);
        secret_service_search(
            service, schema(), attributesOf(key).get(), flags, cancellable_.get(), onFinished,
            begin([done](GObject* source, GAsyncResult* result) {
                GError* error = nullptr;
                GList* const items = secret_service_search_finish(SECRET_SERVICE(source), result, &error);
                auto answer = error == nullptr ? answerOf(items) : SecretAnswer{SecretStatus::Unavailable, {}};
                g_clear_error(&error);
                g_list_free_full(items, g_object_unref);
                done(std::move(answer));
            }));
    });
}

void KeyRing::store(const SecretKey& key, const SecretAnswer& secret, Written done) {
    withService([this, key, secret, done = std::move(done)](SecretService* service) {
        if (service == nullptr) {
            done(false);
            return;
        }
        const auto bytes = secret.view();
        SecretValue* const value =
            secret_value_new(bytes.data(), static_cast<gssize>(bytes.size()), "application/octet-stream");
        secret_service_store(service, schema(), attributesOf(key).get(), SECRET_COLLECTION_DEFAULT,
                             fmt::format("Glintar: {}", key.service).c_str(), value, cancellable_.get(), onFinished,
                             begin([done](GObject* source, GAsyncResult* result) {
                                 done(secret_service_store_finish(SECRET_SERVICE(source), result, nullptr) != 0);
                             }));
        secret_value_unref(value);
    });
}

void KeyRing::remove(const SecretKey& key, Written done) {
    withService([this, key, done = std::move(done)](SecretService* service) {
        if (service == nullptr) {
            done(false);
            return;
        }
        auto finish = [this, key, done](GObject* source, GAsyncResult* result) {
            GError* error = nullptr;
            const bool isRemoved = secret_service_clear_finish(SECRET_SERVICE(source), result, &error) != 0;
            const bool isRefused = error != nullptr;
            g_clear_error(&error);
            if (isRemoved || isRefused) {
                done(isRemoved);
                return;
            }
            // Neither removed nor an error: it was not there, or is locked.
            search(key, [done](const SecretAnswer& answer) { done(answer.status == SecretStatus::NotFound); });
        };
        secret_service_clear(service, schema(), attributesOf(key).get(), cancellable_.get(), onFinished,
                             begin(std::move(finish)));
    });
}

void KeyRing::withService(Use use) {
    if (isClosed_) {
        return;
    }
    if (service_ != nullptr) {
        use(service_.get());
        return;
    }
    waiting_.push_back(std::move(use));
    if (std::exchange(isOpening_, true)) {
        return;
    }
    if (connection_ != nullptr) {
        openService();
    } else {
        connect();
    }
}

void KeyRing::connect() {
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(address_.c_str(), flags, nullptr, cancellable_.get(), onFinished,
                                      begin([this](GObject*, GAsyncResult* result) {
                                          connection_.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
                                          if (connection_ == nullptr || isClosed_) {
                                              opened(nullptr);
                                              return;
                                          }
                                          watch();
                                          openService();
                                      }));
}

void KeyRing::watch() {
    g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    g_signal_connect(connection_.get(), "closed", G_CALLBACK(onClosed), this);
    const auto subscribe = [this](const char* sender, const char* interface, const char* member, const char* name,
                                  GDBusSignalCallback callback) {
        subscriptions_.push_back(g_dbus_connection_signal_subscribe(connection_.get(), sender, interface, member,
                                                                    nullptr, name, G_DBUS_SIGNAL_FLAGS_NONE, callback,
                                                                    this, nullptr));
    };
    subscribe(kBusName, kBusName, "NameOwnerChanged", kServiceName, onOwner);
    subscribe(kServiceName, kServiceInterface, nullptr, nullptr, onServiceSignal);
    subscribe(kServiceName, kCollectionInterface, nullptr, nullptr, onServiceSignal);
}

void KeyRing::openService() {
    auto finish = [this, losses = losses_](GObject* source, GAsyncResult* result) {
        GObject* const made = g_async_initable_new_finish(G_ASYNC_INITABLE(source), result, nullptr);
        GlibObject<SecretService> service(made == nullptr ? nullptr : SECRET_SERVICE(made));
        // Its session is worth nothing if the service has gone since.
        opened(losses == losses_ ? service.release() : nullptr);
    };
    g_async_initable_new_async(glintar_secret_service_get_type(), G_PRIORITY_DEFAULT, cancellable_.get(), onFinished,
                               begin(std::move(finish)), "g-connection", connection_.get(), "flags",
                               SECRET_SERVICE_OPEN_SESSION, nullptr);
}

void KeyRing::opened(SecretService* service) {
    service_.reset(service);
    isOpening_ = false;
    for (const auto& use : std::exchange(waiting_, {})) {
        use(service_.get());
    }
}

void KeyRing::close() {
    isClosed_ = true;
    g_cancellable_cancel(cancellable_.get());
    if (connection_ != nullptr && g_dbus_connection_is_closed(connection_.get()) == 0) {
        g_dbus_connection_close(connection_.get(), nullptr, onFinished,
                                begin([](GObject* source, GAsyncResult* result) {
                                    g_dbus_connection_close_finish(G_DBUS_CONNECTION(source), result, nullptr);
                                }));
    }
}

void KeyRing::disconnect() {
    service_.reset();
    if (connection_ == nullptr) {
        return;
    }
    g_signal_handlers_disconnect_by_data(connection_.get(), this);
    for (const auto subscription : std::exchange(subscriptions_, {})) {
        g_dbus_connection_signal_unsubscribe(connection_.get(), subscription);
    }
    connection_.reset();
}

gpointer KeyRing::begin(Finish finish) {
    const auto call = calls_.insert(calls_.end(), Call{this, std::move(finish), {}});
    call->self = call;
    return &*call;
}

void KeyRing::onFinished(GObject* source, GAsyncResult* result, gpointer call) {
    auto& ended = *static_cast<Call*>(call);
    const auto finish = std::move(ended.finish);
    ended.ring->calls_.erase(ended.self);
    finish(source, result);
}

void KeyRing::onClosed(GDBusConnection*, gboolean, GError*, gpointer ring) {
    auto& self = *static_cast<KeyRing*>(ring);
    ++self.losses_;
    self.disconnect();
}

void KeyRing::onOwner(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* names,
                      gpointer ring) {
    auto& self = *static_cast<KeyRing*>(ring);
    const char* before = "";
    const char* after = "";
    g_variant_get(names, "(&s&s&s)", nullptr, &before, &after);
    if (*before != '\0') {
        ++self.losses_;
        self.service_.reset();
    }
    // Asking now, while there is none, would have the bus start a new one: at the end of a session, say.
    if (*after != '\0') {
        self.onSignal_();
    }
}

void KeyRing::onServiceSignal(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                              gpointer ring) {
    static_cast<KeyRing*>(ring)->onSignal_();
}

}  // namespace glintar::platform
