#pragma once

#include <string>

namespace glintar::platform {

class RunLoop;
class SecretStore;

/// What the module `glintar-secret.so` offers under the name `glintarMakeSecretStore`: a store on the heap, which the
/// caller owns. The run loop must outlive it; the address is that of the message bus.
using MakeSecretStore = SecretStore*(RunLoop& runLoop, const std::string& busAddress);

}  // namespace glintar::platform
