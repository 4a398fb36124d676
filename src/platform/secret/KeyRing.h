#pragma once

#include "platform/secret/GlibHandles.h"
#include "platform/secret/SecretAnswer.h"

#include <libsecret/secret.h>

#include <functional>
#include <list>
#include <string>
#include <vector>

namespace glintar::platform {

/// The Secret Service on one message bus, over a connection of its own. Only asynchronous calls; they work, and run
/// their callbacks, while the thread that made this iterates its default context.
///
/// The service may be missing, come late, never answer, or be replaced. A call may then take as long as the bus lets
/// it.
class KeyRing {
public:
    using Answered = std::function<void(SecretAnswer)>;
    using Written = std::function<void(bool isAccepted)>;

    /// `onSignal` runs when the service has come, or has told of a change in it.
    KeyRing(std::string address, std::function<void()> onSignal);
    KeyRing(const KeyRing&) = delete;
    KeyRing& operator=(const KeyRing&) = delete;
    ~KeyRing();  // callbacks of calls under way never run afterwards

    /// Looks the item up; never asks the user for anything.
    void search(const SecretKey& key, Answered done);
    /// Stores the secret, over an older one if there is one. The service may ask the user to unlock the key ring, and
    /// takes as long as the user does.
    void store(const SecretKey& key, const SecretAnswer& secret, Written done);
    /// Removes the item. One that is locked stays and counts as refused; one that is not there counts as removed.
    void remove(const SecretKey& key, Written done);

    /// Cuts the connection, which ends what is under way soon after, and refuses new calls.
    void close();
    [[nodiscard]] bool isQuiet() const { return calls_.empty(); }

private:
    using Use = std::function<void(SecretService*)>;
    using Finish = std::function<void(GObject*, GAsyncResult*)>;
    struct Call {
        KeyRing* ring;
        Finish finish;
        std::list<Call>::iterator self;
    };

    /// Runs `use` with the service, or with null if it is out of reach.
    void withService(Use use);
    void connect();
    void watch();
    void openService();
    void opened(SecretService* service);
    void disconnect();

    /// The user data for `onFinished`, the one callback of all asynchronous calls.
    [[nodiscard]] gpointer begin(Finish finish);
    static void onFinished(GObject* source, GAsyncResult* result, gpointer call);
    static void onClosed(GDBusConnection*, gboolean, GError*, gpointer ring);
    static void onOwner(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* names,
                        gpointer ring);
    static void onServiceSignal(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                                gpointer ring);

    std::string address_;
    std::function<void()> onSignal_;
    GlibObject<GCancellable> cancellable_{g_cancellable_new()};
    GlibObject<GDBusConnection> connection_;
    std::vector<guint> subscriptions_;
    GlibObject<SecretService> service_;
    std::vector<Use> waiting_;
    std::list<Call> calls_;
    unsigned losses_ = 0;  ///< how often the service or the connection went away
    bool isOpening_ = false;
    bool isClosed_ = false;
};

}  // namespace glintar::platform
