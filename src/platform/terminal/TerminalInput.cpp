#include "platform/terminal/TerminalInput.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace glintar::platform {

namespace {

constexpr std::size_t kLongestLine = std::size_t{64} * 1024;

}  // namespace

TerminalInput::TerminalInput(std::function<void(std::string_view line)> onLine)
    : onLine_(std::move(onLine)), notifier_(STDIN_FILENO, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { onReadable(); });
}

void TerminalInput::onReadable() {
    std::array<char, 4096> bytes;
    const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count <= 0) {
        notifier_.setEnabled(count < 0 && (errno == EINTR || errno == EAGAIN));
        return;
    }
    begun_.append(bytes.data(), static_cast<std::size_t>(count));
    for (auto end = begun_.find('\n'); end != std::string::npos; end = begun_.find('\n')) {
        const auto line = begun_.substr(0, end);
        begun_.erase(0, end + 1);
        onLine_(line);
    }
    if (begun_.size() > kLongestLine) {
        begun_.clear();
    }
}

}  // namespace glintar::platform
