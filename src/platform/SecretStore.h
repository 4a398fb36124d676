#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace glintar::platform {

/// How a call to the secret store ended. `Pending` means that there was no answer within the time a caller may wait;
/// `onChange` runs when there is one.
enum class SecretStatus { Done, NotFound, Locked, Unavailable, Pending, Failed };

struct SecretLookup {
    SecretStatus status = SecretStatus::NotFound;
    std::string bytes;  ///< the secret when `status` is `Done`; any bytes
};

/// The desktop's secure store of secrets; an item is addressed by service and account. Main thread only.
///
/// No read prompts the user, and no call waits for a prompt, waits longer than 100 ms or starts a message bus. What was
/// added or removed reads so at once. If the store refuses it later, it is taken back, and `onChange` runs.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    [[nodiscard]] virtual SecretLookup find(std::string_view service, std::string_view account) = 0;

    /// The same without any wait: what is not known yet is `Pending`.
    [[nodiscard]] virtual SecretLookup peek(std::string_view service, std::string_view account) {
        return find(service, account);
    }
    virtual SecretStatus add(std::string_view service, std::string_view account, std::string_view bytes) = 0;
    virtual SecretStatus remove(std::string_view service, std::string_view account) = 0;

    /// Whether something that was added or removed has been neither accepted nor refused yet.
    [[nodiscard]] virtual bool isWriting() const { return false; }

    /// Runs on the main thread when an item that was asked for before reads differently now: unlocked or written
    /// elsewhere, answered late, or refused.
    std::function<void()> onChange;
};

}  // namespace glintar::platform
