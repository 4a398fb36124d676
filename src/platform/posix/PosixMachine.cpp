#include "platform/posix/PosixMachine.h"

#include <fmt/chrono.h>
#include <sys/random.h>

#include <cstdlib>
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

namespace {

std::tm localParts(WallTime time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    ::tzset();
    ::localtime_r(&seconds, &parts);
    return parts;
}

}  // namespace

std::string ZoneLocalTime::clockText(WallTime time) const {
    return fmt::format("{:%T}", localParts(time));
}

std::string ZoneLocalTime::timestamp(WallTime time) const {
    const std::tm parts = localParts(time);
    const long minutes = std::abs(parts.tm_gmtoff) / 60;
    return fmt::format("{:%FT%T}{}{:02}:{:02}", parts, parts.tm_gmtoff < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

}  // namespace glintar::platform
