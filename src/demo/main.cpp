#include "demo/MarketDocument.h"
#include "demo/MarketOptions.h"
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

/// Returns when a signal came or, with `input`, when that has reached its end.
void waitForEnd(int signals, int input) {
    std::array<pollfd, 2> watched = {
        {{.fd = signals, .events = POLLIN, .revents = 0}, {.fd = input, .events = POLLIN, .revents = 0}}};
    while (true) {
        if (poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) {
            return;
        }
        if (watched[0].revents != 0) {
            return;
        }
        std::array<char, 512> ignored{};
        if (watched[1].revents != 0 && read(input, ignored.data(), ignored.size()) <= 0) {
            return;
        }
    }
}

void removeFolder(const demo::MarketOptions& options) {
    if (demo::isDemoDirectory(options.removeAtEnd)) {
        std::error_code ignored;
        std::filesystem::remove_all(options.removeAtEnd, ignored);
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

int run(const demo::MarketOptions& options, int signals) {
    const auto server = demo::MarketServer::start(options.server);
    if (!server) {
        platform::complain(fmt::format("glintar-demo-market: {}\n", server.error()));
        return 1;
    }
    for (const std::string& fault : options.faults) {
        if (const auto set = (*server)->faults().setFrom(fault); !set) {
            platform::complain(fmt::format("glintar-demo-market: {}\n", set.error()));
            return 2;
        }
    }
    if (!options.configFile.empty()) {
        if (const auto written = writeDocument(options.configFile, (*server)->address()); !written) {
            platform::complain(
                fmt::format("glintar-demo-market: {}: {}\n", options.configFile.string(), written.error()));
            return 1;
        }
    }
    const auto ready = fmt::format("{}{}\n", demo::kMarketReady, (*server)->address());
    if (platform::writeAll(STDOUT_FILENO, ready) != 0) {
        return 1;
    }
    waitForEnd(signals, options.isWithParent ? STDIN_FILENO : -1);
    removeFolder(options);
    _exit(0);  // clients that keep their connections open would hold up an orderly end
}

}  // namespace

int main(int argc, char** argv) {
    platform::reserveStandardStreams();
    const auto options = demo::parseMarketOptions({argv, static_cast<std::size_t>(argc)});
    if (!options || options->isHelp) {
        if (options) {
            return platform::writeAll(STDOUT_FILENO, demo::kMarketUsage) == 0 ? 0 : 1;
        }
        platform::complain(fmt::format("{}\n{}", options.error(), demo::kMarketUsage));
        return 2;
    }
    const int signals = catchEndSignals();
    if (options->isWithParent) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
    }
    std::signal(SIGPIPE, SIG_IGN);  // a parent that has gone already must not keep the folder from being removed
    const int status = run(*options, signals);
    removeFolder(*options);
    return status;
}
