#pragma once

#include <chrono>
#include <expected>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace glintar::demo {

/// How the market says that it can be asked, before its address; and how the folders begin that it may remove.
inline constexpr std::string_view kMarketReady = "listening on ";
inline constexpr std::string_view kDemoDirectoryPrefix = "glintar-demo-";

/// Only a directory that was made for a demonstration may be removed whole.
[[nodiscard]] inline bool isDemoDirectory(const std::filesystem::path& path) {
    std::error_code error;
    return path.is_absolute() && path.filename().string().starts_with(kDemoDirectoryPrefix) &&
           std::filesystem::symlink_status(path, error).type() == std::filesystem::file_type::directory;
}

/// A simulated market and a throw-away profile that asks it, so that the program can be seen without a network and
/// without touching the user's own settings.
///
/// The market is the program `glintar-demo-market`. It ends, and the profile goes, with this object; and also when the
/// process ends in whatever way, when it becomes another program (`execv`), or when the thread that called `start`
/// ends.
class DemoSession {
public:
    /// Starts the program `market` (glintar-demo-market) and returns once it listens. The error says what went wrong,
    /// in one line; nothing is left behind then.
    [[nodiscard]] static std::expected<DemoSession, std::string> start(
        const std::filesystem::path& market, std::chrono::milliseconds deadline = std::chrono::seconds{3});

    DemoSession(DemoSession&&) noexcept;
    DemoSession& operator=(DemoSession&&) noexcept;
    ~DemoSession();

    [[nodiscard]] const std::string& address() const;  ///< of the market: "http://127.0.0.1:PORT"

    /// For XDG_CONFIG_HOME, XDG_DATA_HOME and XDG_CACHE_HOME of this process, before its platform is made.
    [[nodiscard]] std::filesystem::path configHome() const;
    [[nodiscard]] std::filesystem::path dataHome() const;
    [[nodiscard]] std::filesystem::path cacheHome() const;

    /// What stands in place of shipped documents, so that nobody who goes back to them asks a real service.
    [[nodiscard]] std::filesystem::path resources() const;

private:
    struct Parts;
    explicit DemoSession(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

}  // namespace glintar::demo
