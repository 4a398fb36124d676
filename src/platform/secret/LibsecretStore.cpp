#include "platform/secret/LibsecretStore.h"

#include "platform/RunLoop.h"
#include "platform/secret/GlibHandles.h"
#include "platform/secret/KeyRing.h"
#include "platform/secret/SecretCache.h"
#include "platform/secret/SessionBus.h"

#include <gio/gio.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

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

/// The thread that talks to the key ring, and the cache between it and the main thread.
class LibsecretStore::Worker {
public:
    Worker(std::string address, RunLoop& runLoop, std::function<Task()> makeNotice);
    ~Worker();

    // Main thread.
    SecretLookup find(const SecretKey& key, Wait wait);
    void add(const SecretKey& key, std::string_view bytes);
    SecretStatus remove(const SecretKey& key);
    void releaseRemovals();  // any thread
    [[nodiscard]] bool takeNotice();
    [[nodiscard]] bool isWriting();

private:
    void wake();  // any thread

    // The worker's thread.
    void run();
    void pump();
    void note(SecretCache::Notice notice);  ///< with the lock held
    template <class Predicate>
    void iterateUntil(milliseconds limit, Predicate isOver);

    const std::string address_;
    RunLoop& runLoop_;
    const std::function<Task()> makeNotice_;
    const GlibContext context_{g_main_context_new()};
    KeyRing* ring_ = nullptr;
    std::atomic<bool> isStopping_ = false;

    std::mutex mutex_;  // for what follows
    std::condition_variable answered_;
    SecretCache cache_;
    bool isNoticePosted_ = false;

    std::thread thread_;
};

LibsecretStore::Worker::Worker(std::string address, RunLoop& runLoop, std::function<Task()> makeNotice)
    : address_(std::move(address)), runLoop_(runLoop), makeNotice_(std::move(makeNotice)) {
    thread_ = std::thread([this] { run(); });
}

LibsecretStore::Worker::~Worker() {
    isStopping_ = true;
    g_main_context_wakeup(context_.get());
    thread_.join();
}

SecretLookup LibsecretStore::Worker::find(const SecretKey& key, Wait wait) {
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

void LibsecretStore::Worker::add(const SecretKey& key, std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    cache_.add(key, bytes);
    wake();
}

SecretStatus LibsecretStore::Worker::remove(const SecretKey& key) {
    const std::lock_guard lock(mutex_);
    return cache_.remove(key);
}

void LibsecretStore::Worker::releaseRemovals() {
    const std::lock_guard lock(mutex_);
    cache_.releaseRemovals();
    wake();
}

bool LibsecretStore::Worker::takeNotice() {
    const std::lock_guard lock(mutex_);
    isNoticePosted_ = false;
    return cache_.takeNotice() == SecretCache::Notice::Due;
}

bool LibsecretStore::Worker::isWriting() {
    const std::lock_guard lock(mutex_);
    return cache_.isWriting();
}

void LibsecretStore::Worker::wake() {
    GSource* const source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    const auto onTurn = [](gpointer worker) -> gboolean {
        static_cast<Worker*>(worker)->pump();
        return G_SOURCE_REMOVE;
    };
    g_source_set_callback(source, onTurn, this, nullptr);
    g_source_attach(source, context_.get());
    g_source_unref(source);
}

void LibsecretStore::Worker::run() {
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
        releaseRemovals();
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

void LibsecretStore::Worker::pump() {
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

void LibsecretStore::Worker::note(SecretCache::Notice notice) {
    if (notice == SecretCache::Notice::Due && !isStopping_ && !std::exchange(isNoticePosted_, true)) {
        runLoop_.post(makeNotice_());
    }
}

template <class Predicate>
void LibsecretStore::Worker::iterateUntil(milliseconds limit, Predicate isOver) {
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

LibsecretStore::LibsecretStore(RunLoop& runLoop) : runLoop_(runLoop) {}

LibsecretStore::~LibsecretStore() {
    worker_.reset();  // its thread hands out guards of `lifetime_`
}

SecretLookup LibsecretStore::find(std::string_view service, std::string_view account) {
    return look(service, account, Wait::Briefly);
}

SecretLookup LibsecretStore::peek(std::string_view service, std::string_view account) {
    return look(service, account, Wait::No);
}

SecretLookup LibsecretStore::look(std::string_view service, std::string_view account, Wait wait) {
    if (!isAddress(service) || !isAddress(account)) {
        return {SecretStatus::NotFound, {}};
    }
    Worker* const asked = worker();
    return asked == nullptr ? SecretLookup{SecretStatus::Unavailable, {}}
                            : asked->find({std::string(service), std::string(account)}, wait);
}

SecretStatus LibsecretStore::add(std::string_view service, std::string_view account, std::string_view bytes) {
    if (!isAddress(service) || !isAddress(account)) {
        return SecretStatus::Failed;
    }
    Worker* const asked = worker();
    if (asked == nullptr) {
        return SecretStatus::Unavailable;
    }
    asked->add({std::string(service), std::string(account)}, bytes);
    return SecretStatus::Done;
}

SecretStatus LibsecretStore::remove(std::string_view service, std::string_view account) {
    if (!isAddress(service) || !isAddress(account)) {
        return SecretStatus::NotFound;
    }
    Worker* const asked = worker();
    if (asked == nullptr) {
        return SecretStatus::Unavailable;
    }
    const auto status = asked->remove({std::string(service), std::string(account)});
    if (status == SecretStatus::Done) {
        runLoop_.post(lifetime_.guard([asked] { asked->releaseRemovals(); }));
    }
    return status;
}

bool LibsecretStore::isWriting() const {
    return worker_ != nullptr && worker_->isWriting();
}

bool LibsecretStore::busIsThere() {
    return sessionBusAddress().has_value();
}

LibsecretStore::Worker* LibsecretStore::worker() {
    if (worker_ == nullptr) {
        if (auto address = sessionBusAddress()) {
            worker_ = std::make_unique<Worker>(std::move(*address), runLoop_,
                                               [this] { return lifetime_.guard([this] { tell(); }); });
        }
    }
    return worker_.get();
}

void LibsecretStore::tell() {
    if (worker_->takeNotice()) {
        const auto change = onChange;  // on the stack: it may destroy this
        if (change) {
            change();
        }
    }
}

}  // namespace glintar::platform
