#include "platform/qtcore/QtNoticeboard.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace glintar::platform {

namespace {

constexpr off_t kLargestPage = 4 * 1024 * 1024;

// Raised when the page changes so that older programs would misread it: each version has a page of its own.
constexpr int kVersion = 1;

/// A folder of the user's; `others` are the rights that anybody else may have in it.
bool isOwnFolder(const std::filesystem::path& path, mode_t others) {
    struct stat status{};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid() &&
           (status.st_mode & 077 & ~others) == 0;
}

/// FNV-1a: the same in every copy.
std::uint64_t hash(std::string_view text) {
    std::uint64_t value = 0xcbf29ce484222325;
    for (const char character : text) {
        value = (value ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    }
    return value;
}

}  // namespace

std::unique_ptr<QtNoticeboard> QtNoticeboard::open(const std::filesystem::path& profile) {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (!runtime || *runtime != '/') {
        return nullptr;
    }
    const auto folder = std::filesystem::path(runtime) / "glintar";
    if (!isOwnFolder(runtime, 055)) {
        return nullptr;
    }
    ::mkdir(folder.c_str(), 0700);
    if (!isOwnFolder(folder, 0) || ::access(folder.c_str(), W_OK) != 0) {
        return nullptr;
    }
    return std::unique_ptr<QtNoticeboard>(
        new QtNoticeboard(folder, fmt::format("quotes-{}-{:016x}", kVersion, hash(profile.string()))));
}

QtNoticeboard::QtNoticeboard(const std::filesystem::path& folder, const std::string& name)
    : page_(folder / name), watch_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    if (::inotify_add_watch(watch_.number(), folder.c_str(), IN_MOVED_TO | IN_ONLYDIR) >= 0) {
        changes_.emplace(watch_.number(), QSocketNotifier::Read);
        QObject::connect(&*changes_, &QSocketNotifier::activated, &*changes_, [this] { onChange(); });
    }
}

void QtNoticeboard::onChange() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool isOurs = false;
    ssize_t count = 0;
    while ((count = ::read(watch_.number(), buffer.data(), buffer.size())) > 0) {
        for (std::size_t at = 0; at < static_cast<std::size_t>(count);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            isOurs = isOurs || (event.mask & IN_Q_OVERFLOW) != 0 ||
                     (event.len > 0 && page_.filename() == buffer.data() + at + sizeof event);
            at += sizeof event + event.len;
        }
    }
    if (isOurs && onPosted) {
        onPosted();
    }
}

std::optional<std::string> QtNoticeboard::read() const {
    const Descriptor file(::open(page_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status{};
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_uid != ::getuid() || status.st_size > kLargestPage) {
        return std::nullopt;
    }
    std::string page(static_cast<std::size_t>(status.st_size), '\0');
    const auto count = ::read(file.number(), page.data(), page.size());
    return count == status.st_size ? std::optional(std::move(page)) : std::nullopt;
}

bool QtNoticeboard::post(std::string_view page) {
    const auto fresh = fmt::format("{}.{}", page_.string(), ::getpid());
    {
        const Descriptor file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (file.number() >= 0 && writeAll(file.number(), page) == 0 && ::rename(fresh.c_str(), page_.c_str()) == 0) {
            return true;
        }
    }
    ::unlink(fresh.c_str());
    return false;
}

Noticeboard::Lock QtNoticeboard::lock(std::int64_t number) {
    const auto path = fmt::format("{}.lock.{}", page_.string(), number);
    Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (file.number() < 0) {
        return Lock::Impossible;
    }
    if (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? Lock::Taken : Lock::Impossible;
    }
    lock_ = std::move(file);
    // The page may still be of the generation before this one, whose lock others try.
    ::unlink(fmt::format("{}.lock.{}", page_.string(), number - 2).c_str());
    return Lock::Held;
}

std::int64_t QtNoticeboard::self() const {
    return ::getpid();
}

void QtNoticeboard::askForRefresh(std::int64_t process) {
    if (process > 1) {
        ::kill(static_cast<pid_t>(process), SIGUSR1);
    }
}

}  // namespace glintar::platform
