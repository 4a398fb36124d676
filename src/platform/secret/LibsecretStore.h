#pragma once

#include "platform/Lifetime.h"
#include "platform/SecretStore.h"

#include <memory>

namespace glintar::platform {

class RunLoop;

/// Secrets in the desktop's key ring, through the Secret Service on the user's message bus.
///
/// Where there is a bus, the first call starts a thread that talks to the service and follows its signals; without a
/// bus every call ends in `Unavailable` at once and nothing is started. The first read of an item waits for the answer,
/// but at most 100 ms; all else comes from what is known. Reads never prompt. `add` never waits for one, but when the
/// key ring is locked the service may ask the user to open it, and the secret reads as added meanwhile.
///
/// A removal goes out when the run loop turns next: where the secret is added anew before, that simply replaces it, and
/// the old one is not lost if the new one is refused.
///
/// A secret that was found stays readable when the service goes away. Texts that are no UTF-8 or hold a NUL address
/// nothing: they read as `NotFound` and cannot be added.
class LibsecretStore final : public SecretStore {
public:
    explicit LibsecretStore(RunLoop& runLoop);
    ~LibsecretStore() override;  // takes less than 100 ms, of which a write under way gets the first 50

    [[nodiscard]] SecretLookup find(std::string_view service, std::string_view account) override;
    [[nodiscard]] SecretLookup peek(std::string_view service, std::string_view account) override;
    SecretStatus add(std::string_view service, std::string_view account, std::string_view bytes) override;
    SecretStatus remove(std::string_view service, std::string_view account) override;
    [[nodiscard]] bool isWriting() const override;

    /// Whether there is a message bus, without which no key ring can be asked.
    [[nodiscard]] static bool busIsThere();

private:
    class Worker;
    enum class Wait { Briefly, No };

    [[nodiscard]] SecretLookup look(std::string_view service, std::string_view account, Wait wait);

    /// The thread's owner, made when it is first needed; null without a bus.
    Worker* worker();
    void tell();

    RunLoop& runLoop_;
    std::unique_ptr<Worker> worker_;
    Lifetime lifetime_;  // last member
};

}  // namespace glintar::platform
