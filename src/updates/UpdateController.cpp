#include "updates/UpdateController.h"

#include "json/Json.h"
#include "platform/Directories.h"
#include "platform/HttpClient.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/Window.h"
#include "platform/Workspace.h"
#include "text/Unicode.h"
#include "updates/Version.h"

#include <fmt/format.h>

#include <utility>

namespace glintar::updates {

namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenChecks = 24h;
constexpr auto kFirstLook = 100ms;  // what is shown first goes first
constexpr auto kBetweenLooks = 1h;  // at the calendar, which goes on while the machine sleeps
constexpr std::size_t kMaxFeedBytes = std::size_t{1} << 20;
constexpr std::size_t kMaxNotes = 1000;
constexpr const char* kLastCheck = "lastUpdateCheck";  // seconds since 1970
constexpr const char* kAnnounced = "announcedVersion";
constexpr const char* kTitle = "Glintar Updates";

std::int64_t secondsOf(platform::WallTime time) {
    return std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
}

bool isSecure(std::string_view address) {
    return address.starts_with("https://");
}

std::string textOf(json::View object, std::string_view key) {
    const auto member = object.member(key);
    return std::string(member ? member->string().value_or("") : "");
}

std::expected<std::string, std::string> bodyOf(platform::HttpResult result) {
    if (!result) {
        return std::unexpected(result.error().description);
    }
    if (result->status != 200) {
        return std::unexpected(fmt::format("HTTP {}", result->status));
    }
    return std::move(result->body);
}

}  // namespace

std::expected<std::optional<Release>, std::string> newerRelease(std::string feed, std::string_view current) {
    const auto document = json::parseContainer(std::move(feed));
    if (!document) {
        return std::unexpected(document.error().text());
    }
    const auto releases = document->root().member("releases");
    if (!releases || !releases->isArray()) {
        return std::unexpected("it lists no releases");
    }
    const auto ours = Version::parse(current);
    auto best = ours;
    std::optional<Release> newest;
    for (std::size_t i = 0; i < releases->size(); ++i) {
        const auto release = releases->at(i);
        auto text = textOf(release, "version");
        const auto version = Version::parse(text);
        if (best && version && *version > *best && (ours->isPreRelease() || !version->isPreRelease())) {
            auto url = textOf(release, "url");
            newest = {std::move(text), textOf(release, "notes"), isSecure(url) ? std::move(url) : ""};
            best = version;
        }
    }
    return newest;
}

UpdateController::UpdateController(platform::Platform& platform, Options options)
    : platform_(platform), options_(std::move(options)) {}

UpdateController::~UpdateController() = default;

void UpdateController::start() {
    if (isSecure(options_.feed)) {
        timer_ = platform_.runLoop.after(kFirstLook, [this] { look(); });
    }
}

void UpdateController::look() {
    timer_ = platform_.runLoop.after(kBetweenLooks, [this] { look(); });
    checkIfDue();
}

void UpdateController::checkIfDue() {
    const auto now = secondsOf(platform_.runLoop.wallNow());
    const auto last = platform_.preferences.integer(kLastCheck);
    if (last < 0 || last > now || now - last >= std::chrono::seconds(kBetweenChecks).count()) {
        check(Asked::ByItself);
    }
}

void UpdateController::checkForUpdates() {
    if (isSecure(options_.feed)) {
        check(Asked::ByUser);
    } else {
        say("This build of Glintar does not look for updates.");
    }
}

void UpdateController::check(Asked asked) {
    auto finish = lifetime_.guard([this, asked](const auto& found) { this->finish(asked, found); });
    platform_.http.send(
        {.url = options_.feed, .maxBodyBytes = kMaxFeedBytes},
        [&loop = platform_.runLoop, version = platform_.bundle.version(),
         finish = std::move(finish)](platform::HttpResult result) mutable {
            auto body = bodyOf(std::move(result));
            auto found = body ? newerRelease(*std::move(body), version) : std::unexpected(body.error());
            loop.post([finish = std::move(finish), found = std::move(found)]() mutable { finish(found); });
        });
}

void UpdateController::finish(Asked asked, const std::expected<std::optional<Release>, std::string>& found) {
    platform_.preferences.setInteger(kLastCheck, secondsOf(platform_.runLoop.wallNow()));  // a failure counts as well
    if (found && *found) {
        if (asked == Asked::ByUser || platform_.preferences.string(kAnnounced) != (*found)->version) {
            platform_.preferences.setString(kAnnounced, (*found)->version);
            announce(**found);
        }
    } else if (asked == Asked::ByUser) {
        say(found ? fmt::format("Glintar {} is the newest version.", platform_.bundle.version())
                  : "It could not be found out whether there is a newer version: " + text::oneLine(found.error()));
    }
}

void UpdateController::announce(const Release& release) {
    platform::AlertText alert{.title = fmt::format("Glintar {} Is Available", release.version),
                              .text = fmt::format("You have version {}.", platform_.bundle.version()),
                              .buttons = {"Later"}};
    if (const auto notes = text::printable(text::firstCharacters(release.notes, kMaxNotes)); !notes.empty()) {
        alert.text += "\n\n" + notes;
    }
    if (!release.url.empty()) {
        alert.text += "\n\n" + text::oneLine(release.url);
        alert.buttons.insert(alert.buttons.begin(), "Open Web Page");
    }
    alert_ = options_.windows.showAlert(std::move(alert), [this, url = release.url](std::size_t button) {
        if (!url.empty() && button == 0) {
            options_.workspace.open(url);
        }
        alert_.reset();
    });
}

void UpdateController::say(std::string text) {
    alert_ = options_.windows.showAlert({.title = kTitle, .text = std::move(text), .buttons = {"OK"}},
                                        [this](std::size_t) { alert_.reset(); });
}

}  // namespace glintar::updates
