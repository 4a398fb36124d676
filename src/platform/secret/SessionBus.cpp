#include "platform/secret/SessionBus.h"

#include "platform/posix/Descriptor.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace glintar::platform {

namespace {

constexpr int kPatience = 500;  // milliseconds

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

std::string unescapedValue(std::string_view value) {
    std::string plain;
    while (!value.empty()) {
        unsigned char byte = static_cast<unsigned char>(value.front());
        const bool isEscaped = byte == '%' && value.size() > 2;
        if (isEscaped) {
            std::from_chars(value.data() + 1, value.data() + 3, byte, 16);
        }
        plain += static_cast<char>(byte);
        value.remove_prefix(isEscaped ? 3 : 1);
    }
    return plain;
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

bool answersSoon(std::string_view address) {
    const auto entry = address.substr(0, address.find(';'));
    sockaddr_un socketAddress{.sun_family = AF_UNIX, .sun_path = {}};
    socklen_t length = 0;
    for (const auto& [key, offset] : {std::pair{std::string_view("path="), 0}, {"abstract=", 1}}) {
        if (const auto at = entry.find(key); entry.starts_with("unix:") && at != std::string_view::npos) {
            const auto rest = entry.substr(at + key.size());
            const auto name = unescapedValue(rest.substr(0, rest.find(',')));
            name.copy(socketAddress.sun_path + offset, sizeof socketAddress.sun_path - 2);
            length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(offset) +
                                            name.size());
            break;
        }
    }
    if (length == 0 || length > sizeof socketAddress) {
        return true;  // another kind of address
    }
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (::connect(socket.number(), reinterpret_cast<const sockaddr*>(&socketAddress), length) != 0) {
        return errno != EAGAIN;  // nobody listens, which libdbus sees at once; or too many wait already
    }
    constexpr std::string_view kGreeting("\0AUTH EXTERNAL\r\n", 16);
    ::send(socket.number(), kGreeting.data(), kGreeting.size(), MSG_NOSIGNAL);
    pollfd answer{.fd = socket.number(), .events = POLLIN, .revents = 0};
    return ::poll(&answer, 1, kPatience) != 0;
}

}  // namespace glintar::platform
