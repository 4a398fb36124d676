#pragma once

#include "platform/Noticeboard.h"
#include "platform/posix/Descriptor.h"

#include <QSocketNotifier>

#include <filesystem>
#include <memory>
#include <optional>

namespace glintar::platform {

/// The noticeboard in the user's runtime directory: `$XDG_RUNTIME_DIR/glintar/`, for nobody else to read. Locks are
/// flock's, the watch is inotify's.
class QtNoticeboard final : public Noticeboard {
public:
    /// For the profile whose preferences are in that folder. None without a runtime directory that is the user's own
    /// and can be written. Needs a QCoreApplication.
    [[nodiscard]] static std::unique_ptr<QtNoticeboard> open(const std::filesystem::path& profile);

    std::optional<std::string> read() const override;
    bool post(std::string_view page) override;
    Lock lock(std::int64_t number) override;
    void unlock() override { lock_ = Descriptor(); }
    std::int64_t self() const override;
    void askForRefresh(std::int64_t process) override;

private:
    QtNoticeboard(const std::filesystem::path& folder, const std::string& name);
    void onChange();

    std::filesystem::path page_;
    Descriptor lock_;
    Descriptor watch_;
    std::optional<QSocketNotifier> changes_;
};

}  // namespace glintar::platform
