#pragma once

#include "menubar/ImageCache.h"
#include "platform/Graphics.h"
#include "platform/RunLoop.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace glintar::platform {
struct Platform;
}

namespace glintar::menubar {

/// The coins' icons by `apiId`: in memory, in the user's folder "CoinIcons", or to be had from the address that came
/// with a quote. Any thread, but calls that read the disk do not belong on the main one.
///
/// An `apiId` may hold anything, since a user can type it. One that could name a file outside the folder, or none at
/// all, has its icon in memory only; nothing on the disk is asked for it.
class CoinIcons : public std::enable_shared_from_this<CoinIcons> {
public:
    CoinIcons(platform::Platform& platform, const platform::Graphics& graphics);

    /// The one of this process. Main thread.
    static CoinIcons& shared(platform::Platform& platform, const platform::Graphics& graphics);

    /// From memory, else from the disk; null when it is in neither.
    [[nodiscard]] platform::ImagePtr icon(std::string_view apiId);

    struct Wish {
        std::string apiId;
        const void* asker = nullptr;      ///< a later wish of the same asker for the same coin replaces the earlier
        platform::Instant quoted = {};    ///< when the quote came that names the address
        std::function<void()> onArrived;  ///< on the main thread, once `icon` has it; never when the download fails
    };

    /// Downloads an icon, unless the address is no web address or the icon is there by now. One request per address at
    /// a time: whoever else wishes for it meanwhile gets the same answer. One that failed is not asked again for the
    /// same quote.
    void download(std::string_view imageUrl, Wish wish);

    /// Reads the disk, decodes. None when there is no such file or it is no image.
    [[nodiscard]] platform::ImagePtr loadCachedIcon(std::string_view apiId) const;

    /// Makes the folder where it is missing. Whether the icon is there now.
    bool saveIcon(const platform::Image& image, std::string_view apiId);

    /// None when the machine names no caches directory.
    [[nodiscard]] const std::optional<std::filesystem::path>& iconDirectory() const { return iconDirectory_; }

private:
    using Wishes = std::map<std::pair<const void*, std::string>, Wish>;

    [[nodiscard]] std::optional<std::filesystem::path> fileOf(std::string_view apiId) const;
    void decodeAnswer(const std::string& address, const std::string& body);
    void arrived(const std::string& address, const platform::ImagePtr& image);

    platform::Platform& platform_;
    const platform::Graphics& graphics_;
    std::optional<std::filesystem::path> iconDirectory_;
    ImageCache imageCache_;

    std::mutex mutex_;
    std::map<std::string, Wishes> underWay_;           ///< by address
    std::map<std::string, platform::Instant> failed_;  ///< when the quote came that named the address
};

}  // namespace glintar::menubar
