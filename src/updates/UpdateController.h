#pragma once

#include "platform/Lifetime.h"
#include "platform/RunLoop.h"

#include <expected>
#include <memory>
#include <optional>
#include <string>

namespace glintar::platform {
class Alert;
class WindowServer;
class Workspace;
struct Platform;
}  // namespace glintar::platform

namespace glintar::updates {

/// A release as the feed tells of it. The feed is a JSON document, read over https:
///
///     {"releases": [{"version": "1.3.0", "notes": "What is new.", "url": "https://example.org/1.3.0"}]}
///
/// `notes` and `url` may be absent; an address that is not https counts as absent. An element without a valid version
/// is passed over.
struct Release {
    std::string version;
    std::string notes;
    std::string url;
};

/// The newest release that is newer than `current` by the precedence of semantic versions; of those before a release
/// only where `current` is one of them. The error says what is wrong with the feed.
[[nodiscard]] std::expected<std::optional<Release>, std::string> newerRelease(std::string feed,
                                                                              std::string_view current);

/// Looks for newer releases of the program and tells of them, with a link; downloads and runs nothing. Main thread.
class UpdateController {
public:
    struct Options {
        platform::WindowServer& windows;
        platform::Workspace& workspace;
        std::string feed;  ///< address; empty means that this build does not look
    };

    UpdateController(platform::Platform& platform, Options options);
    UpdateController(const UpdateController&) = delete;
    UpdateController& operator=(const UpdateController&) = delete;
    ~UpdateController();

    /// From now on looks once a day by itself, the first time in a moment: tells of each release once, and of nothing
    /// else.
    void start();

    /// The user asks: tells of every outcome.
    void checkForUpdates();

private:
    enum class Asked { ByUser, ByItself };

    void look();
    void checkIfDue();
    void check(Asked asked);
    void finish(Asked asked, const std::expected<std::optional<Release>, std::string>& found);
    void announce(const Release& release);
    void say(std::string text);

    platform::Platform& platform_;
    Options options_;
    std::unique_ptr<platform::Alert> alert_;
    platform::TimerHandle timer_;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::updates
