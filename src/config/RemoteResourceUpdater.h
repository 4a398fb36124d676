#pragma once

#include "platform/Lifetime.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::platform {
struct Platform;
}

namespace glintar::config {

/// What tells one shipped document that the configuration server can replace from another.
struct RemoteResource {
    std::string_view name;          ///< on the server: /api/NAME.json, and /api/NAME_ver.json with its version
    std::string_view versionKey;    ///< preference with the version of the stored copy; absent counts as 0
    std::string_view notification;  ///< posted when a new copy has been stored
    std::optional<std::filesystem::path> (*storedAt)(platform::Platform&);
    std::optional<std::string> (*flaw)(std::string body);  ///< why this must not be stored, if so; on the HTTP thread

    // Parts of the log lines.
    std::string_view mark;
    std::string_view tag;
    std::string_view noun;
    std::string_view started;
    std::string_view stored;
};

/// Replaces the stored copy of one document when the configuration server has a newer version of it.
///
/// The version document is a JSON object with the integer "version" (written without fraction and exponent) and, at
/// will, the text "desc". The HTTP status is not looked at: a page that is no such document fails as what it is. The
/// file is replaced before the number is stored, so a crash between the two only costs another download. Outcomes are
/// the file, the number, the notification and the log; a failure leaves the first three as they were. Main thread.
class RemoteResourceUpdater {
public:
    RemoteResourceUpdater(const RemoteResourceUpdater&) = delete;
    RemoteResourceUpdater& operator=(const RemoteResourceUpdater&) = delete;

    /// Starts the check and returns at once. Only the first call in a process does anything.
    void checkForNewVersion();

    /// Makes no check in this process, whoever asks for one later: for a run that is over before an answer could serve
    /// it, or that must not ask a server at all.
    void skipCheck() { isCheckDone_ = true; }

protected:
    RemoteResourceUpdater(platform::Platform& platform, const RemoteResource& resource)
        : platform_(platform), resource_(resource) {}
    ~RemoteResourceUpdater() = default;

private:
    struct Download;

    template <class Read, class Then>
    void fetch(std::string_view suffix, Read read, Then then);
    void handleVersion(const std::expected<std::int64_t, std::string>& remote);
    void handleDownload(std::int64_t version, const std::expected<Download, std::string>& download);
    [[nodiscard]] std::expected<void, std::string> store(const Download& download,
                                                         const std::filesystem::path& path) const;

    platform::Platform& platform_;
    const RemoteResource& resource_;
    bool isCheckDone_ = false;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::config
