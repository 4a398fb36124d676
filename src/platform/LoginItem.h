#pragma once

#include <expected>
#include <string>

namespace glintar::platform {

/// The desktop's list of programs that start when the user logs in. It is the only record of that choice. Main thread.
class LoginItem {
public:
    using Outcome = std::expected<void, std::string>;  ///< or why not, in words for the user
    virtual ~LoginItem() = default;

    /// Read anew each time, since other programs change it.
    [[nodiscard]] virtual bool isEnabled() const = 0;
    virtual Outcome registerItem() = 0;
    /// Failing when there was none is an error too.
    virtual Outcome unregisterItem() = 0;

    /// Writes an item of ours that names the program at a former place anew; does nothing else.
    virtual void repair() = 0;
};

}  // namespace glintar::platform
