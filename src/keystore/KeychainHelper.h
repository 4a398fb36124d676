#pragma once

#include "platform/SecretStore.h"

#include <optional>
#include <string>
#include <string_view>

namespace glintar::platform {
struct Platform;
}

namespace glintar::keystore {

/// The user's API keys, in the desktop's secure store. Keeps nothing itself; main thread only, and never waits longer
/// than the store does. To most callers a failure looks like a missing key; the settings ask what it was.
class KeychainHelper {
public:
    explicit KeychainHelper(platform::Platform& platform) : platform_(platform) {}

    /// Replaces what is stored under the key name. `Done` when it reads so from now on; the store may still refuse it
    /// later, and then tells of a change.
    platform::SecretStatus save(std::string_view bytes, std::string_view keyName) const;
    [[nodiscard]] std::optional<std::string> read(std::string_view keyName) const;
    /// `Done` as for `save`; `NotFound` when there was none.
    platform::SecretStatus delete_(std::string_view keyName) const;

    /// What is known of the key now, without any wait.
    [[nodiscard]] platform::SecretLookup peek(std::string_view keyName) const;

    /// Key name of a source's API key, and the key itself as text; empty when there is none or it is no UTF-8.
    [[nodiscard]] static std::string keyNameOf(std::string_view sourceId);
    [[nodiscard]] std::string apiKeyOf(std::string_view sourceId) const;

    /// Until `release`, `apiKeyOf` answers for this source what is stored now: half a key is not to be sent while the
    /// user types.
    void hold(std::string_view sourceId) const;
    void release() const;

    /// A key that is no header value would be cut or split on the wire, so it is never sent. False for an empty one.
    [[nodiscard]] static bool canBeSent(std::string_view key);

private:
    platform::Platform& platform_;
};

}  // namespace glintar::keystore
