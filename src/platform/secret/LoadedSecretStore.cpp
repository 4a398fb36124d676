#include "platform/secret/LoadedSecretStore.h"

#include "platform/Console.h"
#include "platform/posix/InstalledBundle.h"
#include "platform/secret/SessionBus.h"

#include <dlfcn.h>

namespace glintar::platform {

SecretLookup LoadedSecretStore::find(std::string_view service, std::string_view account) {
    auto* const found = store();
    return found ? found->find(service, account) : SecretLookup{SecretStatus::Unavailable, {}};
}

SecretLookup LoadedSecretStore::peek(std::string_view service, std::string_view account) {
    auto* const found = store();
    return found ? found->peek(service, account) : SecretLookup{SecretStatus::Unavailable, {}};
}

SecretStatus LoadedSecretStore::add(std::string_view service, std::string_view account, std::string_view bytes) {
    auto* const found = store();
    return found ? found->add(service, account, bytes) : SecretStatus::Unavailable;
}

SecretStatus LoadedSecretStore::remove(std::string_view service, std::string_view account) {
    auto* const found = store();
    return found ? found->remove(service, account) : SecretStatus::Unavailable;
}

SecretStore* LoadedSecretStore::store() {
    const auto address = store_ || !isOn_ ? std::nullopt : sessionBusAddress();
    if (!address) {
        return store_.get();
    }
    // Never unloaded: GLib's types cannot be.
    const auto path = InstalledBundle::program("glintar-secret.so");
    void* const module = path ? ::dlopen(path->c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE) : nullptr;
    auto* const make = module ? reinterpret_cast<MakeSecretStore*>(::dlsym(module, "glintarMakeSecretStore")) : nullptr;
    if (!make) {
        isOn_ = false;
        console_.print(std::string("⚠️ [KeyStore] ") + (path ? ::dlerror() : "glintar-secret.so is not installed"));
        return nullptr;
    }
    store_.reset(make(runLoop_, *address));
    store_->onChange = [this] {
        if (onChange) {
            onChange();
        }
    };
    return store_.get();
}

}  // namespace glintar::platform
