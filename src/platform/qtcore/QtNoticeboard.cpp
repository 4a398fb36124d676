#include "platform/qtcore/QtNoticeboard.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <fcntl.h>
#include <fmt/format.h>
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

constexpr off_t kLargestPage = off_t{4} << 20;
constexpr std::size_t kDigits = 16;

// Raised when the page changes so that older programs would misread it: each version has a page of its own.
constexpr int kVersion = 1;

/// A folder of the user's; `others` are the rights that anybody else may have in it.
bool isOwnFolder(const std::filesystem::path& path, mode_t others) {
    struct stat status{};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid() &&
           (status.st_mode & 077 & ~others) == 0;
}

/// The first 64 bits of its SHA-256, in hexadecimal.
std::string fingerprint(std::string_view text) {
    const auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(kDigits).toStdString();
}

struct flock range(short type, std::int64_t start, std::int64_t length) {
    return {.l_type = type, .l_whence = SEEK_SET, .l_start = start, .l_len = length, .l_pid = 0};
}

}  // namespace

std::unique_ptr<QtNoticeboard> QtNoticeboard::open(const std::filesystem::path& profile) {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (!runtime || *runtime != '/' || !isOwnFolder(runtime, 055)) {
        return nullptr;
    }
    const auto folder = std::filesystem::path(runtime) / "glintar";
    ::mkdir(folder.c_str(), 0700);
    if (!isOwnFolder(folder, 0)) {
        return nullptr;
    }
    const auto page = folder / fmt::format("quotes-{}-{}", kVersion, fingerprint(profile.string()));
    Descriptor locks(::open((page.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    return locks.number() < 0 ? nullptr : std::unique_ptr<QtNoticeboard>(new QtNoticeboard(page, std::move(locks)));
}

QtNoticeboard::QtNoticeboard(std::filesystem::path page, Descriptor locks)
    : page_(std::move(page)), locks_(std::move(locks)), watch_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    if (::inotify_add_watch(watch_.number(), page_.parent_path().c_str(), IN_MOVED_TO | IN_ONLYDIR) >= 0) {
        changes_.emplace(watch_.number(), QSocketNotifier::Read);
        QObject::connect(&*changes_, &QSocketNotifier::activated, &*changes_, [this] { onChange(); });
    }
}

/// Whatever is moved there is a page, nearly always this one.
void QtNoticeboard::onChange() {
    std::array<char, 4096> events;
    while (::read(watch_.number(), events.data(), events.size()) > 0) {
    }
    if (onPosted) {
        onPosted();
    }
}

std::optional<std::string> QtNoticeboard::read() const {
    const Descriptor file(::open(page_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status{};
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > kLargestPage) {
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
    auto wanted = range(F_WRLCK, number, 1);
    if (::fcntl(locks_.number(), F_SETLK, &wanted) == 0) {
        return Lock::Held;
    }
    return errno == EACCES || errno == EAGAIN ? Lock::Taken : Lock::Impossible;
}

void QtNoticeboard::unlock() {
    auto all = range(F_UNLCK, 0, 0);
    ::fcntl(locks_.number(), F_SETLK, &all);
}

bool QtNoticeboard::askForRefresh(std::int64_t number) {
    auto holder = range(F_WRLCK, number, 1);
    return ::fcntl(locks_.number(), F_GETLK, &holder) == 0 && holder.l_type != F_UNLCK && holder.l_pid > 0 &&
           ::kill(holder.l_pid, SIGUSR1) == 0;
}

std::string QtNoticeboard::seal(std::string_view text) const {
    const auto salt = fmt::format("{:016x}", QRandomGenerator::system()->generate64());
    return salt + fingerprint(salt + std::string(text));
}

bool QtNoticeboard::isSealOf(std::string_view seal, std::string_view text) const {
    const auto salt = std::string(seal.substr(0, kDigits));
    return seal == salt + fingerprint(salt + std::string(text));
}

}  // namespace glintar::platform
