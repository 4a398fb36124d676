#include "platform/posix/Descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

namespace glintar::platform {

Descriptor::~Descriptor() {
    if (number_ >= 0) {
        ::close(number_);
    }
}

int writeAll(int descriptor, std::string_view bytes, int stop) {
    while (!bytes.empty()) {
        std::array<pollfd, 2> watched{pollfd{descriptor, POLLOUT, 0}, pollfd{stop, POLLIN, 0}};
        if (::poll(watched.data(), watched.size(), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno;
        }
        if (watched[1].revents != 0 && (watched[0].revents & POLLOUT) == 0) {
            return ECANCELED;
        }
        // A pipe that can be written takes this much without waiting.
        const ssize_t written = ::write(descriptor, bytes.data(), std::min<std::size_t>(bytes.size(), PIPE_BUF));
        if (written < 0 && errno != EINTR && errno != EAGAIN) {
            return errno;
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return 0;
}

void complain(std::string_view text) {
    [[maybe_unused]] const int nobodyToTell = writeAll(STDERR_FILENO, text);
}

void reserveStandardStreams() {
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
        if (::fcntl(number, F_GETFD) < 0) {
            ::open("/dev/null", O_RDWR);  // takes the lowest number that is free, which is this one
        }
    }
}

}  // namespace glintar::platform
