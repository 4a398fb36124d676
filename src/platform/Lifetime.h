#pragma once

#include <memory>
#include <utility>

namespace glintar::platform {

/// Guards deferred work against the end of its owner: what `guard` returns does nothing once the `Lifetime` is gone.
/// Make it the owner's last member, so that it dies first. Only for work that runs on the owner's own thread.
class Lifetime {
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    template <class Work>
    [[nodiscard]] auto guard(Work work) const {
        return [alive = std::weak_ptr<const char>(token_), work = std::move(work)](auto&&... arguments) mutable {
            if (!alive.expired()) {
                work(std::forward<decltype(arguments)>(arguments)...);
            }
        };
    }

private:
    std::shared_ptr<const char> token_ = std::make_shared<const char>('\0');
};

}  // namespace glintar::platform
