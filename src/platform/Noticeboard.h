#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::platform {

/// One page that all copies of the program for one user and profile share, and numbered locks beside it. A lock is
/// given back when its holder ends, however it ends. Main thread only.
class Noticeboard {
public:
    enum class Lock { Held, Taken, Impossible };

    virtual ~Noticeboard() = default;

    /// None when there is no page that can be read.
    [[nodiscard]] virtual std::optional<std::string> read() const = 0;

    /// Puts a page in place of the old one, whole. False when it cannot be written.
    [[nodiscard]] virtual bool post(std::string_view page) = 0;

    /// Tries to take this lock, without waiting. `unlock` gives back all that are held.
    [[nodiscard]] virtual Lock lock(std::int64_t number) = 0;
    virtual void unlock() = 0;

    /// A sign to the copy that holds this lock that it should refresh. False when no other one does.
    [[nodiscard]] virtual bool askForRefresh(std::int64_t number) = 0;

    /// Tells whether two texts are the same without showing them: a fingerprint with random salt, other each time.
    [[nodiscard]] virtual std::string seal(std::string_view text) const = 0;
    [[nodiscard]] virtual bool isSealOf(std::string_view seal, std::string_view text) const = 0;

    /// Runs after a page has been posted, by whomever.
    std::function<void()> onPosted;
};

}  // namespace glintar::platform
