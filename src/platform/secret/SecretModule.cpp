#include "platform/secret/SecretModule.h"

#include "platform/secret/LibsecretStore.h"

extern "C" [[gnu::visibility("default")]] glintar::platform::SecretStore* glintarMakeSecretStore(
    glintar::platform::RunLoop& runLoop) {
    return new glintar::platform::LibsecretStore(runLoop);
}
