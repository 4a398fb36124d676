#include "platform/secret/SessionBus.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>

namespace glintar::platform {

namespace {

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

/// In the form of D-Bus server addresses: all but these bytes as "%" and two hexadecimal digits.
std::string escapedValue(std::string_view value) {
    constexpr std::string_view kPlain = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-_/.\\*";
    std::string escaped;
    for (const char byte : value) {
        escaped +=
            kPlain.contains(byte) ? std::string(1, byte) : fmt::format("%{:02x}", static_cast<unsigned char>(byte));
    }
    return escaped;
}

}  // namespace

std::optional<std::string> sessionBusAddress() {
    if (auto rest = variable("DBUS_SESSION_BUS_ADDRESS"); !rest.empty()) {
        std::string addresses;
        while (!rest.empty()) {
            const auto entry = rest.substr(0, rest.find(';'));
            rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
            if (!entry.empty() && !entry.starts_with("autolaunch:") && !entry.starts_with("disabled:")) {
                addresses.append(addresses.empty() ? "" : ";").append(entry);
            }
        }
        return addresses.empty() ? std::nullopt : std::optional(std::move(addresses));
    }
    const std::filesystem::path runtime = variable("XDG_RUNTIME_DIR");
    std::error_code error;
    if (runtime.empty() || !std::filesystem::exists(runtime / "bus", error)) {
        return std::nullopt;
    }
    return "unix:path=" + escapedValue((runtime / "bus").string());
}

}  // namespace glintar::platform
