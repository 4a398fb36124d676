#include "platform/posix/PosixFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace glintar::platform {

namespace {

constexpr off_t kMaxFileBytes = off_t{64} << 20;

std::string describe(int error) {
    return std::generic_category().message(error);
}

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    [[nodiscard]] int get() const { return fd_; }

private:
    int fd_;
};

Files::Outcome writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return std::unexpected(describe(errno));
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return {};
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
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) {
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
        const ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
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
    std::string beside = path.string() + ".XXXXXX";
    const Descriptor file(::mkostemp(beside.data(), O_CLOEXEC));
    if (file.get() < 0) {
        return std::unexpected(describe(errno));
    }
    auto outcome = writeAll(file.get(), bytes);
    if (outcome && (::fsync(file.get()) != 0 || ::rename(beside.c_str(), path.c_str()) != 0)) {
        outcome = std::unexpected(describe(errno));
    }
    if (!outcome) {
        ::unlink(beside.c_str());
    }
    return outcome;
}

Files::Outcome PosixFiles::remove(const std::filesystem::path& path) {
    return ::unlink(path.c_str()) == 0 ? Outcome{} : std::unexpected(describe(errno));
}

Files::Outcome PosixFiles::makeDirectories(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return error ? Outcome(std::unexpected(error.message())) : Outcome{};
}

}  // namespace glintar::platform
