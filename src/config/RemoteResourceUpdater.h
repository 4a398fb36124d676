#pragma once

#include "platform/Lifetime.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace glintar::platform {
struct Platform;
}

namespace glintar::config {

/// What tells one shipped document that the configuration server can replace from another.
struct RemoteResource {
    std::string_view verUrl;        ///< of the version document, from the server's address on
    std::string_view dataUrl;       ///< of the document itself
    std::string_view versionKey;    ///< preference with the version of the stored copy; absent counts as 0
    std::string_view notification;  ///< posted when a new copy has been stored
    std::optional<std::filesystem::path> (*storedAt)(platform::Platform&);
    std::expected<void, std::string> (*check)(std::string body);  ///< or why it must not be stored; on the HTTP thread
    bool (*canBeUsed)(std::string stored);                        ///< on the HTTP thread

    /// What the log says. In place of {} stand the versions, the local one first, or the error.
    struct Lines {
        std::string_view started;
        std::string_view versionCheckFailed;
        std::string_view compared;
        std::string_view newerFound;
        std::string_view upToDate;
        std::string_view downloadFailed;
        std::string_view stored;
    } lines;
};

/// Replaces the stored copy of one document when the configuration server has a newer version of it.
///
/// The version document is a JSON object with the integer "version" (written without fraction and exponent) and, at
/// will, the text "desc". A stored copy that is missing or cannot be used counts as version 0. The HTTP status is not
/// looked at: a page that is no such document fails as what it is. The file is replaced before the number is stored, so
/// a crash between the two only costs another download. Outcomes are the file, the number, the notification and the
/// log; a failure leaves the first three as they were. Main thread.
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
    struct Comparison;
    struct Download;

    template <class Read, class Then>
    void fetch(std::string_view address, Read read, Then then);
    void handleVersion(const std::expected<Comparison, std::string>& compared);
    void handleDownload(std::int64_t version, const std::expected<Download, std::string>& download);
    template <class... Values>
    void log(std::string_view line, const Values&... values);

    platform::Platform& platform_;
    const RemoteResource& resource_;
    bool isCheckDone_ = false;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::config
