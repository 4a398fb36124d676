#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::platform {

/// The user's choices, kept under short keys. Main thread only.
///
/// Reads go to the store each time, since another process may have written it. A key that is absent, or whose value
/// cannot be read as the type asked for, reads as false, 0 or "none"; `string` and `data` tell absent from empty.
/// A write that fails leaves the store as it was, is reported on the console and answers false.
class Preferences {
public:
    virtual ~Preferences() = default;

    [[nodiscard]] virtual bool boolean(std::string_view key) const = 0;
    [[nodiscard]] virtual std::int64_t integer(std::string_view key) const = 0;
    [[nodiscard]] virtual double real(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<std::string> string(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<std::string> data(std::string_view key) const = 0;  ///< any bytes

    virtual bool setBoolean(std::string_view key, bool value) = 0;
    virtual bool setInteger(std::string_view key, std::int64_t value) = 0;
    virtual bool setReal(std::string_view key, double value) = 0;
    virtual bool setString(std::string_view key, std::string_view value) = 0;
    virtual bool setData(std::string_view key, std::string_view bytes) = 0;
    virtual bool remove(std::string_view key) = 0;

    /// Runs on the main thread after another process changed the store.
    std::function<void()> onExternalChange;
};

}  // namespace glintar::platform
