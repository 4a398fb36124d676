#include "platform/posix/PosixMachine.h"

#include <fmt/format.h>
#include <sys/random.h>

#include <ctime>

namespace glintar::platform {

void KernelEntropy::fill(std::span<std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t got = ::getrandom(bytes.data(), bytes.size(), 0);
        if (got > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(got));
        }
    }
}

std::string ZoneLocalTime::clockText(WallTime time) const {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    ::tzset();
    ::localtime_r(&seconds, &parts);
    return fmt::format("{:02}:{:02}:{:02}", parts.tm_hour, parts.tm_min, parts.tm_sec);
}

}  // namespace glintar::platform
