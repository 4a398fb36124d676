#pragma once

namespace glintar::platform {

class RunLoop;
class SecretStore;

/// What the module `glintar-secret.so` offers under the name `glintarMakeSecretStore`: a store on the heap, which the
/// caller owns. The run loop must outlive it.
using MakeSecretStore = SecretStore*(RunLoop& runLoop);

}  // namespace glintar::platform
