#pragma once

#include "platform/SecretStore.h"

#include <memory>
#include <string>

namespace glintar::platform {

class Console;
class RunLoop;

/// What the module `glintar-secret.so` offers under the name `glintarMakeSecretStore`: a store on the heap, which the
/// caller owns. The run loop must outlive it; the address is that of the message bus.
using MakeSecretStore = SecretStore*(RunLoop& runLoop, const std::string& busAddress);

/// The desktop's key ring, whose code is loaded at the first call, and only where there is a bus to ask it over.
/// Without one, or without the module, every call ends in `Unavailable`.
class LoadedSecretStore final : public SecretStore {
public:
    /// `isOn` says whether it is asked at all.
    LoadedSecretStore(RunLoop& runLoop, Console& console, bool isOn = true)
        : runLoop_(runLoop), console_(console), isOn_(isOn) {}

    SecretLookup find(std::string_view service, std::string_view account) override;
    SecretLookup peek(std::string_view service, std::string_view account) override;
    SecretStatus add(std::string_view service, std::string_view account, std::string_view bytes) override;
    SecretStatus remove(std::string_view service, std::string_view account) override;
    bool isWriting() const override { return store_ != nullptr && store_->isWriting(); }

private:
    SecretStore* store();

    RunLoop& runLoop_;
    Console& console_;
    bool isOn_;  ///< until loading fails
    std::unique_ptr<SecretStore> store_;
};

}  // namespace glintar::platform
