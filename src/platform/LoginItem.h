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
    /// Removing an item that is not there is an error too.
    virtual Outcome unregisterItem() = 0;

    /// Writes the item anew if it is ours and names a place where the program was before. Otherwise does nothing.
    virtual void repair() = 0;
};

}  // namespace glintar::platform
