#include "demo/DemoSession.h"

#include "config/Coin.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFiles.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

extern char** environ;

namespace glintar::demo {

namespace {

using platform::Descriptor;
using Clock = std::chrono::steady_clock;
using Outcome = std::expected<void, std::string>;

constexpr const char* kDownloaded = "data/glintar/remote_api_endpoints.json";

struct Pipe {
    Descriptor out;
    Descriptor in;
};

std::optional<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return std::nullopt;
    }
    return Pipe{Descriptor(ends[0]), Descriptor(ends[1])};
}

/// Whether there is something to read, or an end to notice, before the moment.
bool waitFor(int descriptor, Clock::time_point until) {
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
        pollfd watched{.fd = descriptor, .events = POLLIN, .revents = 0};
        const int ready = poll(&watched, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
        if (ready >= 0 || errno != EINTR) {
            return ready > 0;
        }
    }
}

std::expected<std::string, std::string> readLine(int descriptor, Clock::time_point until) {
    std::string line;
    while (line.size() < 256) {
        char next = 0;
        if (!waitFor(descriptor, until)) {
            return std::unexpected("the market took too long to start");
        }
        if (read(descriptor, &next, 1) != 1) {
            return std::unexpected("the market ended at once");
        }
        if (next == '\n') {
            break;
        }
        line += next;
    }
    return line;
}

/// Whether the program that writes there goes away before the moment.
bool closesBefore(int descriptor, Clock::time_point until) {
    std::array<char, 256> ignored{};
    while (waitFor(descriptor, until)) {
        if (read(descriptor, ignored.data(), ignored.size()) <= 0) {
            return true;
        }
    }
    return false;
}

/// QSettings keeps bytes as text inside @ByteArray(...), with quotes and backslashes escaped, all of it quoted.
std::string asSettingsBytes(std::string_view bytes) {
    std::string escaped;
    for (const char c : bytes) {
        if (c == '"' || c == '\\') {
            escaped += '\\';
        }
        escaped += c;
    }
    return fmt::format("\"@ByteArray({})\"", escaped);
}

std::string preferences() {
    const std::string coins = config::encodeCoins({
        {"0B6E5D52-6F0B-4C0E-9D5C-1F3B7A3C9E01", "BTC", "bitcoin", 60000},
        {"0B6E5D52-6F0B-4C0E-9D5C-1F3B7A3C9E02", "ETH", "ethereum", 3000},
        {"0B6E5D52-6F0B-4C0E-9D5C-1F3B7A3C9E03", "SOL", "solana", 150},
    });
    return fmt::format(
        "[General]\n"
        "gasSource=0\n"
        "savedCoins={}\n"
        "selectedSourceID=coingecko\n"
        "showChange24h=true\n"
        "showGasFee=true\n"
        "showHighLow24h=false\n"
        "showSparkline=true\n",
        asSettingsBytes(coins));
}

std::expected<std::filesystem::path, std::string> makeFolder() {
    std::error_code error;
    auto base = std::filesystem::temp_directory_path(error);
    if (error) {
        base = "/tmp";
    }
    std::string pattern = std::filesystem::absolute(base, error) / (std::string(kDemoDirectoryPrefix) + "XXXXXX");
    if (mkdtemp(pattern.data()) == nullptr) {
        return std::unexpected(
            fmt::format("a folder for the demonstration cannot be made: {}: {}", pattern, std::strerror(errno)));
    }
    return pattern;
}

/// Signals that would end this process wait: between the making of the folder and the start of the market, which
/// removes it when we are gone, nobody else would.
class HeldSignals {
public:
    HeldSignals() {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
            sigaddset(&ending, signal);
        }
        pthread_sigmask(SIG_BLOCK, &ending, &before_);
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

    [[nodiscard]] const sigset_t& before() const { return before_; }

private:
    sigset_t before_{};
};

}  // namespace

struct DemoSession::Parts {
    ~Parts();

    Outcome writeProfile() const;
    Outcome launch(const std::filesystem::path& program, const sigset_t& signalsBefore);
    Outcome awaitAddress(Clock::time_point until);

    std::filesystem::path folder;
    std::string address;
    pid_t market = -1;
    Descriptor lifeline;  // its standard input: the market ends when nobody holds this end any more
    Descriptor output;
};

DemoSession::Parts::~Parts() {
    if (market > 0) {
        kill(market, SIGTERM);
        if (!closesBefore(output.number(), Clock::now() + std::chrono::seconds{2})) {
            kill(market, SIGKILL);
        }
        while (waitpid(market, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

Outcome DemoSession::Parts::writeProfile() const {
    platform::PosixFiles files;
    for (const std::string_view name : {"config/glintar", "data/glintar", "cache/glintar", "resources"}) {
        if (auto made = files.makeDirectories(folder / name); !made) {
            return made;
        }
    }
    return files.replace(folder / "config/glintar/glintar.conf", preferences());
}

Outcome DemoSession::Parts::launch(const std::filesystem::path& program, const sigset_t& signalsBefore) {
    auto input = makePipe();
    auto answers = makePipe();
    if (!input || !answers) {
        return std::unexpected(std::strerror(errno));
    }
    const std::string document = folder / kDownloaded;
    std::vector<std::string> words = {program, document, folder};
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input->out.number(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, answers->in.number(), STDOUT_FILENO);
    // In a process group of its own, or an interrupt from the terminal would end it before us.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &signalsBefore);
    const int failure = posix_spawn(&market, program.c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        market = -1;
        return std::unexpected(fmt::format("{}: {}", program.string(), std::strerror(failure)));
    }
    lifeline = std::move(input->in);
    output = std::move(answers->out);
    return {};
}

Outcome DemoSession::Parts::awaitAddress(Clock::time_point until) {
    const auto line = readLine(output.number(), until);
    if (!line) {
        return std::unexpected(line.error());
    }
    if (!line->starts_with(kMarketReady)) {
        return std::unexpected(fmt::format("the market says \"{}\"", *line));
    }
    address = line->substr(kMarketReady.size());
    // The same file twice: the downloaded one may be replaced or removed.
    std::error_code error;
    std::filesystem::create_hard_link(folder / kDownloaded, folder / "resources/api_endpoints.json", error);
    return error ? Outcome(std::unexpected(error.message())) : Outcome();
}

std::expected<DemoSession, std::string> DemoSession::start(const std::filesystem::path& market,
                                                           std::chrono::milliseconds deadline) {
    const auto until = Clock::now() + deadline;
    std::optional<HeldSignals> held(std::in_place);
    auto folder = makeFolder();
    if (!folder) {
        return std::unexpected(folder.error());
    }
    auto parts = std::make_unique<Parts>();
    parts->folder = std::move(*folder);
    if (auto written = parts->writeProfile(); !written) {
        return std::unexpected(written.error());
    }
    if (auto launched = parts->launch(market, held->before()); !launched) {
        return std::unexpected(launched.error());
    }
    held.reset();
    if (auto ready = parts->awaitAddress(until); !ready) {
        return std::unexpected(ready.error());
    }
    return DemoSession(std::move(parts));
}

DemoSession::DemoSession(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
DemoSession::DemoSession(DemoSession&&) noexcept = default;
DemoSession& DemoSession::operator=(DemoSession&&) noexcept = default;
DemoSession::~DemoSession() = default;

const std::string& DemoSession::address() const {
    return parts_->address;
}

std::filesystem::path DemoSession::configHome() const {
    return parts_->folder / "config";
}

std::filesystem::path DemoSession::dataHome() const {
    return parts_->folder / "data";
}

std::filesystem::path DemoSession::cacheHome() const {
    return parts_->folder / "cache";
}

std::filesystem::path DemoSession::resources() const {
    return parts_->folder / "resources";
}

}  // namespace glintar::demo
