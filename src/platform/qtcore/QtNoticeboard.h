#pragma once

#include "platform/Noticeboard.h"
#include "platform/posix/Descriptor.h"

#include <QSocketNotifier>

#include <filesystem>
#include <memory>
#include <optional>

namespace glintar::platform {

/// The noticeboard in the user's runtime directory: files in `$XDG_RUNTIME_DIR/glintar/`, for nobody else to read. A
/// lock is fcntl's, on one byte of a file, since the kernel tells who holds it; the watch is inotify's.
class QtNoticeboard final : public Noticeboard {
public:
    /// For the profile whose preferences are in that folder. None without a runtime directory that is the user's own
    /// and can be written. One a process and profile; needs a QCoreApplication.
    [[nodiscard]] static std::unique_ptr<QtNoticeboard> open(const std::filesystem::path& profile);

    std::optional<std::string> read() const override;
    bool post(std::string_view page) override;
    Lock lock(std::int64_t number) override;
    void unlock() override;
    bool askForRefresh(std::int64_t number) override;
    std::string seal(std::string_view text) const override;
    bool isSealOf(std::string_view seal, std::string_view text) const override;

private:
    QtNoticeboard(std::filesystem::path page, Descriptor locks);
    void onChange();

    std::filesystem::path page_;
    Descriptor locks_;
    Descriptor watch_;
    std::optional<QSocketNotifier> changes_;
};

}  // namespace glintar::platform
