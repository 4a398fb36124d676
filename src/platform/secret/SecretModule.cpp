// The module's one door, as `LoadedSecretStore` knows it.

#include "platform/secret/LibsecretStore.h"

using namespace glintar::platform;

extern "C" [[gnu::visibility("default")]] SecretStore* glintarMakeSecretStore(RunLoop& runLoop,
                                                                              const std::string& busAddress) {
    return new LibsecretStore(runLoop, busAddress);
}
