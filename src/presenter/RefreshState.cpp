#include "presenter/RefreshState.h"

#include "platform/Platform.h"
#include "platform/Registry.h"

namespace glintar::presenter {

RefreshState& RefreshState::shared(platform::Platform& platform) {
    return platform.registry.shared<RefreshState>([&] {
        auto state = std::make_shared<RefreshState>();
        state->nextFetchTime = platform.runLoop.now();
        return state;
    });
}

}  // namespace glintar::presenter
