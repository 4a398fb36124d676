#pragma once

#include "platform/Lifetime.h"
#include "platform/RunLoop.h"
#include "platform/SecretStore.h"
#include "platform/secret/GlibHandles.h"
#include "platform/secret/SecretCache.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace glintar::platform {

class KeyRing;

/// Secrets in the desktop's key ring, through the Secret Service on the user's message bus. A thread of its own talks
/// to the service, from the first call on, and follows its signals; between it and the main thread stands a cache.
///
/// `find` waits for the answer when it asks for an item for the first time: at most 100 ms, and not at all while
/// another read is overdue. All else, `peek` above all, answers from the cache. Reads never prompt. `add` does not wait
/// either; when the key ring is locked, the service may ask the user to open it, and the secret reads as added
/// meanwhile.
///
/// A secret that was found stays readable when the service goes away. Texts that are no UTF-8 or hold a NUL address
/// nothing: they read as `NotFound` and cannot be added.
class LibsecretStore final : public SecretStore {
public:
    /// `address` is the bus's.
    LibsecretStore(RunLoop& runLoop, std::string address);
    ~LibsecretStore() override;  // takes less than 100 ms, of which a write under way gets the first 50

    [[nodiscard]] SecretLookup find(std::string_view service, std::string_view account) override {
        return look(service, account, Wait::Briefly);
    }
    [[nodiscard]] SecretLookup peek(std::string_view service, std::string_view account) override {
        return look(service, account, Wait::No);
    }
    SecretStatus add(std::string_view service, std::string_view account, std::string_view bytes) override;
    SecretStatus remove(std::string_view service, std::string_view account) override;
    [[nodiscard]] bool isWriting() const override;

private:
    enum class Wait { Briefly, No };
    [[nodiscard]] SecretLookup look(std::string_view service, std::string_view account, Wait wait);
    void wake();  // any thread
    void tell();

    // The thread's own.
    void run();
    void pump();
    void note(SecretCache::Notice notice);  ///< with the lock held
    template <class Predicate>
    void iterateUntil(std::chrono::milliseconds limit, Predicate isOver);

    RunLoop& runLoop_;
    const std::string address_;
    const GlibContext context_{g_main_context_new()};
    KeyRing* ring_ = nullptr;
    std::atomic<bool> isStopping_ = false;
    std::atomic<bool> isNoticePosted_ = false;

    mutable std::mutex mutex_;  // for what follows
    std::condition_variable answered_;
    SecretCache cache_;

    std::thread thread_;
    Lifetime lifetime_;  // last member
};

}  // namespace glintar::platform
