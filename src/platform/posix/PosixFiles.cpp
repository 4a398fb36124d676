#include "platform/posix/PosixFiles.h"

#include "platform/posix/Descriptor.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>

namespace glintar::platform {

namespace {

constexpr off_t kMaxFileBytes = off_t{64} << 20;
constexpr std::string_view kBeside = ".~";
constexpr std::size_t kRandom = 6;

/// QSettings names its own "glintar.conf." and six letters of either case, which is more than a person calls a copy.
bool isLeftOver(std::string_view name) {
    const auto random = name.substr(name.size() - std::min(name.size(), kRandom));
    const auto before = name.substr(0, name.size() - random.size());
    const auto isUpper = [](char c) { return c >= 'A' && c <= 'Z'; };
    const auto isLower = [](char c) { return c >= 'a' && c <= 'z'; };
    const bool isOfQt = before.ends_with(".conf.") && std::ranges::any_of(random, isLower) &&
                        std::ranges::any_of(random.substr(std::min<std::size_t>(1, random.size())), isUpper) &&
                        std::ranges::all_of(random, [&](char c) { return isUpper(c) || isLower(c); });
    return isOfQt || before.ends_with(kBeside);
}

std::string describe(int error) {
    return std::generic_category().message(error);
}

}  // namespace

bool PosixFiles::exists(const std::filesystem::path& path) const {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

std::expected<std::string, std::string> PosixFiles::read(const std::filesystem::path& path) const {
    // Non-blocking, or opening a pipe of that name would wait for a writer.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status{};
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0) {
        return std::unexpected(describe(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        return std::unexpected(S_ISDIR(status.st_mode) ? describe(EISDIR) : std::string("Not a regular file"));
    }
    if (status.st_size > kMaxFileBytes) {
        return std::unexpected(describe(EFBIG));
    }
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = ::read(file.number(), bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno != EINTR) {
            return std::unexpected(describe(errno));
        }
        if (got == 0) {
            break;  // it became shorter meanwhile
        }
        filled += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
    bytes.resize(filled);
    return bytes;
}

Files::Outcome PosixFiles::replace(const std::filesystem::path& path, std::string_view bytes) {
    std::string beside = fmt::format("{}{}XXXXXX", path.native(), kBeside);
    const Descriptor file(::mkostemp(beside.data(), O_CLOEXEC));
    if (file.number() < 0) {
        return std::unexpected(describe(errno));
    }
    int error = writeAll(file.number(), bytes);
    if (error == 0 && (::fsync(file.number()) != 0 || ::rename(beside.c_str(), path.c_str()) != 0)) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(beside.c_str());
        return std::unexpected(describe(error));
    }
    return {};
}

void removeLeftovers(const std::filesystem::path& folder) {
    std::error_code error;
    const auto latest = std::filesystem::file_time_type::clock::now() - std::chrono::hours{1};
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        if (isLeftOver(entry->path().filename().native()) &&
            entry->symlink_status(ignored).type() == std::filesystem::file_type::regular &&
            entry->last_write_time(ignored) < latest && !ignored) {
            std::filesystem::remove(entry->path(), ignored);
        }
    }
}

Files::Outcome PosixFiles::remove(const std::filesystem::path& path) {
    return ::unlink(path.c_str()) == 0 ? Outcome{} : std::unexpected(describe(errno));
}

Files::Outcome PosixFiles::removeAll(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    return error ? Outcome(std::unexpected(error.message())) : Outcome{};
}

Files::Outcome PosixFiles::makeDirectories(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return error ? Outcome(std::unexpected(error.message())) : Outcome{};
}

}  // namespace glintar::platform
