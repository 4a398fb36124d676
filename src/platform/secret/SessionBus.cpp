#include "platform/secret/SessionBus.h"

#include "platform/posix/Descriptor.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace glintar::platform {

namespace {

// Milliseconds. Who gives up too early has neither tray nor key ring until the next start, so this is longer than other
// waits, and it costs something only where the bus stands still. A bus that was running answered within 28 ms on two
// loaded processors, one that was just being started took up to 93 ms, with its files in memory.
constexpr int kPatience = 500;

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
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
    return "unix:path=" + (runtime / "bus").string();
}

bool answersSoon(std::string_view address) {
    const auto entry = address.substr(0, address.find(';'));
    sockaddr_un socketAddress{.sun_family = AF_UNIX, .sun_path = {}};
    socklen_t length = 0;
    for (const auto& [key, offset] : {std::pair{std::string_view("path="), 0}, {"abstract=", 1}}) {
        if (const auto at = entry.find(key); entry.starts_with("unix:") && at != std::string_view::npos) {
            const auto rest = entry.substr(at + key.size());
            const auto name = rest.substr(0, rest.find(','));
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
