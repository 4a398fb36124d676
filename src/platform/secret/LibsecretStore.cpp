#include "platform/secret/LibsecretStore.h"

#include "platform/secret/KeyRing.h"

namespace glintar::platform {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFirstReadLimit{100};
constexpr milliseconds kLastWritesLimit{50};
constexpr milliseconds kClosingLimit{30};

/// What can be an attribute of an item.
bool isAddress(std::string_view text) {
    return text.empty() || g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != 0;
}

}  // namespace

LibsecretStore::LibsecretStore(RunLoop& runLoop, std::string address)
    : runLoop_(runLoop), address_(std::move(address)) {
    thread_ = std::thread([this] { run(); });
}

LibsecretStore::~LibsecretStore() {
    isStopping_ = true;
    g_main_context_wakeup(context_.get());
    thread_.join();
}

bool LibsecretStore::isWriting() const {
    const std::lock_guard lock(mutex_);
    return cache_.isWriting();
}

SecretLookup LibsecretStore::look(std::string_view service, std::string_view account, Wait wait) {
    if (!isAddress(service) || !isAddress(account)) {
        return {SecretStatus::NotFound, {}};
    }
    const SecretKey key{std::string(service), std::string(account)};
    std::unique_lock lock(mutex_);
    const bool isSlow = cache_.isSlow();
    const auto want = cache_.want(key, runLoop_.now());
    if (want != SecretCache::Want::Nothing) {
        wake();
    }
    if (wait == Wait::Briefly && want == SecretCache::Want::First && !isSlow) {
        answered_.wait_for(lock, kFirstReadLimit, [&] { return cache_.isAnswered(key); });
    }
    const auto answer = cache_.find(key);
    return {answer.status, std::string(answer.view())};
}

SecretStatus LibsecretStore::add(std::string_view service, std::string_view account, std::string_view bytes) {
    if (!isAddress(service) || !isAddress(account)) {
        return SecretStatus::Failed;
    }
    const std::lock_guard lock(mutex_);
    cache_.add({std::string(service), std::string(account)}, bytes);
    wake();
    return SecretStatus::Done;
}

SecretStatus LibsecretStore::remove(std::string_view service, std::string_view account) {
    if (!isAddress(service) || !isAddress(account)) {
        return SecretStatus::NotFound;
    }
    const std::lock_guard lock(mutex_);
    wake();
    return cache_.remove({std::string(service), std::string(account)});
}

void LibsecretStore::tell() {
    isNoticePosted_ = false;
    if (const auto change = onChange) {  // on the stack: it may destroy this
        change();
    }
}

void LibsecretStore::wake() {
    GSource* const source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    const auto onTurn = [](gpointer store) -> gboolean {
        static_cast<LibsecretStore*>(store)->pump();
        return G_SOURCE_REMOVE;
    };
    g_source_set_callback(source, onTurn, this, nullptr);
    g_source_attach(source, context_.get());
    g_source_unref(source);
}

void LibsecretStore::run() {
    g_main_context_push_thread_default(context_.get());
    {
        KeyRing ring(address_, [this] {
            {
                const std::lock_guard lock(mutex_);
                cache_.readAllAgain();
            }
            pump();
        });
        ring_ = &ring;
        while (!isStopping_) {
            g_main_context_iteration(context_.get(), TRUE);
        }
        pump();
        iterateUntil(kLastWritesLimit, [this] {
            const std::lock_guard lock(mutex_);
            return !cache_.isWriting();
        });
        ring.close();
        iterateUntil(kClosingLimit, [&ring] { return ring.isQuiet(); });
    }
    while (g_main_context_iteration(context_.get(), FALSE) != 0) {
        // What the proxies let go is freed here.
    }
    g_main_context_pop_thread_default(context_.get());
}

void LibsecretStore::pump() {
    std::vector<SecretKey> reads;
    std::vector<SecretCache::Write> writes;
    {
        const std::lock_guard lock(mutex_);
        writes = cache_.takeWrites();
        if (!isStopping_) {
            reads = cache_.takeReads();
        }
    }
    for (const auto& write : writes) {
        const auto done = [this, write](bool isAccepted) {
            {
                const std::lock_guard lock(mutex_);
                note(cache_.wrote(write, isAccepted ? SecretCache::Outcome::Accepted : SecretCache::Outcome::Refused));
            }
            pump();
        };
        if (write.secret.status == SecretStatus::Done) {
            ring_->store(write.key, write.secret, done);
        } else {
            ring_->remove(write.key, done);
        }
    }
    for (const auto& key : reads) {
        ring_->search(key, [this, key](SecretAnswer answer) {
            {
                const std::lock_guard lock(mutex_);
                note(cache_.answered(key, std::move(answer), runLoop_.now()));
            }
            answered_.notify_all();
            pump();
        });
    }
}

void LibsecretStore::note(SecretCache::Notice notice) {
    if (notice == SecretCache::Notice::Due && !isStopping_ && !isNoticePosted_.exchange(true)) {
        runLoop_.post(lifetime_.guard([this] { tell(); }));
    }
}

template <class Predicate>
void LibsecretStore::iterateUntil(milliseconds limit, Predicate isOver) {
    bool isLate = false;
    GSource* const alarm = g_timeout_source_new(static_cast<guint>(limit.count()));
    g_source_set_callback(
        alarm,
        [](gpointer late) -> gboolean {
            *static_cast<bool*>(late) = true;
            return G_SOURCE_REMOVE;
        },
        &isLate, nullptr);
    g_source_attach(alarm, context_.get());
    while (!isLate && !isOver()) {
        g_main_context_iteration(context_.get(), TRUE);
    }
    g_source_destroy(alarm);
    g_source_unref(alarm);
}

}  // namespace glintar::platform
