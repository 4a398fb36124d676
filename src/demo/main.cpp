#include "demo/DemoSession.h"
#include "demo/MarketDocument.h"
#include "demo/MarketServer.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/InstalledBundle.h"
#include "platform/posix/PosixFiles.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

using namespace glintar;

namespace {

/// From now on the signals that end a program can be read from the descriptor that is returned.
int catchEndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        sigaddset(&signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

/// Returns when a signal came or standard input has reached its end, which is that of whoever started us.
void waitForEnd(int signals) {
    std::array<pollfd, 2> watched = {
        {{.fd = signals, .events = POLLIN, .revents = 0}, {.fd = STDIN_FILENO, .events = POLLIN, .revents = 0}}};
    while (true) {
        if (poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) {
            return;
        }
        if (watched[0].revents != 0) {
            return;
        }
        std::array<char, 512> ignored{};
        if (watched[1].revents != 0 && read(STDIN_FILENO, ignored.data(), ignored.size()) <= 0) {
            return;
        }
    }
}

/// Writes the shipped document as it reads on this market.
std::expected<void, std::string> writeDocument(const std::filesystem::path& file, std::string_view address) {
    platform::PosixFiles files;
    const auto shipped = platform::InstalledBundle({}).resource("api_endpoints", "json");
    auto text = shipped ? files.read(*shipped) : std::unexpected(std::string("the shipped document is missing"));
    if (!text) {
        return std::unexpected(text.error());
    }
    const auto document = demo::marketDocument(*std::move(text), address);
    return document ? files.replace(file, *document) : std::unexpected(document.error());
}

}  // namespace

/// Called by `DemoSession`, with where the source configuration is to be written and the folder that is to be removed
/// at the end.
int main(int argc, char** argv) {
    platform::reserveStandardStreams();
    if (argc != 3) {
        platform::complain("glintar-demo-market is started by glintar --demo\n");
        return 2;
    }
    const int signals = catchEndSignals();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    std::signal(SIGPIPE, SIG_IGN);  // a parent that has gone already must not keep the folder from being removed
    const auto server = demo::MarketServer::start();
    const auto written = server ? writeDocument(argv[1], (*server)->address()) : std::unexpected(server.error());
    if (!written) {
        platform::complain(fmt::format("glintar-demo-market: {}\n", written.error()));
    } else if (platform::writeAll(STDOUT_FILENO, fmt::format("{}{}\n", demo::kMarketReady, (*server)->address())) ==
               0) {
        waitForEnd(signals);
    }
    if (demo::isDemoDirectory(argv[2])) {
        std::error_code ignored;
        std::filesystem::remove_all(argv[2], ignored);
    }
    _exit(written ? 0 : 1);  // clients that keep their connections open would hold up an orderly end
}
