#include "app/Start.h"

#include "app/Deployment.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/InstalledBundle.h"
#include "platform/qtcore/QtNoticeboard.h"

#include <QProcess>
#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <span>

namespace glintar::app {

namespace {

constexpr int kKeptFree = 128 * 1024;

/// Writes to standard output; the exit status.
int say(std::string_view text) {
    return platform::writeAll(STDOUT_FILENO, text) == 0 ? 0 : kFailed;
}

/// None when it could not be started, which has been said.
std::optional<demo::DemoSession> startDemo() {
    const auto market = platform::InstalledBundle::program("glintar-demo-market");
    auto session = market ? demo::DemoSession::start(*market)
                          : std::unexpected(std::string("glintar-demo-market is not installed"));
    if (!session) {
        platform::complain(fmt::format("glintar: {}\n", session.error()));
        return std::nullopt;
    }
    for (const auto& [name, path] :
         {std::pair{"XDG_CONFIG_HOME", session->configHome()}, std::pair{"XDG_DATA_HOME", session->dataHome()},
          std::pair{"XDG_CACHE_HOME", session->cacheHome()}}) {
        ::setenv(name, path.c_str(), 1);
    }
    platform::complain(
        fmt::format("glintar: simulated market on {}; none of these prices is real\n", session->address()));
    return *std::move(session);
}

}  // namespace

std::optional<std::string_view> environment(const char* name) {
    const char* value = std::getenv(name);
    return value && *value ? std::optional<std::string_view>(value) : std::nullopt;
}

std::expected<Start, int> readStart(int argc, char** argv) {
    const std::span<const char* const> words(argv, static_cast<std::size_t>(argc));
    const auto arguments = parseArguments(words.subspan(std::min<std::size_t>(1, words.size())));
    if (!arguments) {
        platform::complain(fmt::format("glintar: {}\nTry \"glintar --help\".\n", arguments.error()));
        return std::unexpected(kWrongUsage);
    }
    if (arguments->command == Arguments::Command::Help) {
        return std::unexpected(say(usage()));
    }
    if (arguments->command == Arguments::Command::Version) {
        return std::unexpected(say(fmt::format("glintar {}\n", platform::InstalledBundle({}).version())));
    }
    const char* const named = std::getenv("GLINTAR_CONFIG_SERVER");
    auto server = configServer(named ? std::optional<std::string_view>(named) : std::nullopt);
    if (!server) {
        platform::complain(fmt::format("glintar: {}\n", server.error()));
        return std::unexpected(kWrongUsage);
    }
    return Start{*arguments, *std::move(server)};
}

std::expected<std::optional<demo::DemoSession>, int> prepareProcess(const Arguments& arguments) {
    // Answers are parsed on one thread; a heap for each would only hold on to memory.
    ::mallopt(M_ARENA_MAX, 1);
    // What an answer took goes back once it is freed. Left alone, glibc keeps up to twice the largest block ever freed.
    ::mallopt(M_TRIM_THRESHOLD, kKeptFree);
    std::optional<demo::DemoSession> session;
    if (arguments.demo) {
        session = startDemo();
        if (!session) {
            return std::unexpected(kFailed);
        }
    }
    return session;
}

std::unique_ptr<platform::Noticeboard> noticeboard(const Arguments& arguments) {
    const auto profile = platform::XdgDirectories::configuration();
    return profile && !arguments.demo ? platform::QtNoticeboard::open(*profile) : nullptr;
}

void openDashboard() {
    QProcess desktop;
    desktop.setStandardInputFile(QProcess::nullDevice());
    desktop.setStandardOutputFile(QProcess::nullDevice());
    if (const auto program = platform::InstalledBundle::program("glintar-desktop")) {
        desktop.setProgram(QString::fromStdString(program->string()));
        desktop.setArguments({"--dashboard"});
        desktop.startDetached();
    }
}

platform::RealPlatform::Options platformOptions(const Start& start, const std::optional<demo::DemoSession>& session) {
    return {.configServer = start.configServer,
            .looksUpSecrets = !start.arguments.demo,
            .replacements = session ? session->resources() : std::filesystem::path()};
}

}  // namespace glintar::app
