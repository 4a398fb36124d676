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

    /// Tries to take this lock, without waiting, in place of the one that is held.
    [[nodiscard]] virtual Lock lock(std::int64_t number) = 0;
    virtual void unlock() = 0;

    /// This process, as others name it, and a sign to another one that it should refresh.
    [[nodiscard]] virtual std::int64_t self() const = 0;
    virtual void askForRefresh(std::int64_t process) = 0;

    /// Runs after a page has been posted, by whomever.
    std::function<void()> onPosted;
};

}  // namespace glintar::platform
