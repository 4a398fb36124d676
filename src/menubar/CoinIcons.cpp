#include "menubar/CoinIcons.h"

#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/HttpClient.h"
#include "platform/Platform.h"
#include "platform/Registry.h"
#include "platform/WorkQueue.h"
#include "text/Address.h"

#include <vector>

namespace glintar::menubar {

namespace {

constexpr std::size_t kCacheBytes = std::size_t{1} << 20;
constexpr std::size_t kMaxIconBytes = std::size_t{4} << 20;

std::optional<std::filesystem::path> folderIn(std::optional<std::filesystem::path> caches) {
    return caches ? std::optional(*caches / "CoinIcons") : std::nullopt;
}

bool isFileName(std::string_view apiId) {
    // File systems allow 255 bytes; ".png" and the name beside it during a replacement need some.
    static constexpr std::size_t kLongest = 240;
    static constexpr std::string_view kForbidden("/\0", 2);
    return !apiId.empty() && apiId.size() <= kLongest && !apiId.starts_with('.') &&
           apiId.find_first_of(kForbidden) == std::string_view::npos;
}

}  // namespace

CoinIcons::CoinIcons(platform::Platform& platform, const platform::Graphics& graphics)
    : platform_(platform),
      graphics_(graphics),
      iconDirectory_(folderIn(platform.directories.caches())),
      imageCache_(kCacheBytes) {}

CoinIcons& CoinIcons::shared(platform::Platform& platform, const platform::Graphics& graphics) {
    return platform.registry.shared<CoinIcons>([&] { return std::make_shared<CoinIcons>(platform, graphics); });
}

platform::ImagePtr CoinIcons::icon(std::string_view apiId) {
    auto image = imageCache_.find(apiId);
    return image ? image : loadCachedIcon(apiId);
}

void CoinIcons::download(std::string_view imageUrl, Wish wish) {
    const auto address = text::webAddress(imageUrl);
    if (!address) {
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        if (const auto failed = failed_.find(*address); failed != failed_.end() && failed->second >= wish.quoted) {
            return;
        }
        const auto underWay = underWay_.find(*address);
        // It may have come since the asker looked.
        if (underWay == underWay_.end() && imageCache_.find(wish.apiId)) {
            return;
        }
        auto& wishes = underWay == underWay_.end() ? underWay_[*address] : underWay->second;
        std::pair key(wish.asker, wish.apiId);
        wishes.insert_or_assign(std::move(key), std::move(wish));
        if (underWay != underWay_.end()) {
            return;
        }
    }
    platform_.http.send({.url = *address, .maxBodyBytes = kMaxIconBytes},
                        [weak = weak_from_this(), address = *address](platform::HttpResult result) mutable {
                            const auto self = weak.lock();
                            if (!self) {
                                return;
                            }
                            if (!result) {
                                self->arrived(address, nullptr);
                                return;
                            }
                            // Not here: decoding would hold up the other answers.
                            self->platform_.workQueue.async(
                                [weak = std::move(weak), address = std::move(address), body = std::move(result->body)] {
                                    if (const auto still = weak.lock()) {
                                        still->decodeAnswer(address, body);
                                    }
                                });
                        });
}

void CoinIcons::decodeAnswer(const std::string& address, const std::string& body) {
    auto image = graphics_.decode(body);
    arrived(address, image ? *std::move(image) : nullptr);
}

void CoinIcons::arrived(const std::string& address, const platform::ImagePtr& image) {
    std::vector<std::pair<Wish, bool>> granted;  // with whether the icon is in memory
    {
        // Under one lock, so that nobody finds neither the icon nor the download.
        const std::lock_guard lock(mutex_);
        auto wishes = underWay_.extract(address);
        if (wishes.empty()) {
            return;
        }
        if (!image) {
            platform::Instant quoted;
            for (const auto& [key, wish] : wishes.mapped()) {
                quoted = std::max(quoted, wish.quoted);
            }
            std::erase_if(failed_, [&](const auto& before) { return before.second < quoted; });
            failed_[address] = quoted;
            return;
        }
        for (auto& [key, wish] : wishes.mapped()) {
            const bool isKept = imageCache_.insert(wish.apiId, image);
            granted.emplace_back(std::move(wish), isKept);
        }
    }
    std::vector<std::function<void()>> onArrived;
    for (auto& [wish, isKept] : granted) {
        // An icon that could not be kept at all would be asked for again at once, without end.
        if (const bool isSaved = saveIcon(*image, wish.apiId); isSaved || isKept) {
            onArrived.push_back(std::move(wish.onArrived));
        }
    }
    platform_.runLoop.post([onArrived = std::move(onArrived)] {
        for (const auto& tell : onArrived) {
            tell();
        }
    });
}

platform::ImagePtr CoinIcons::loadCachedIcon(std::string_view apiId) const {
    const auto file = fileOf(apiId);
    const auto bytes = file ? platform_.files.read(*file) : std::unexpected(std::string());
    if (!bytes) {
        return nullptr;
    }
    auto image = graphics_.decode(*bytes);
    return image ? *std::move(image) : nullptr;
}

bool CoinIcons::saveIcon(const platform::Image& image, std::string_view apiId) {
    const auto file = fileOf(apiId);
    if (!file) {
        return false;
    }
    const auto bytes = graphics_.png(image);
    return !bytes.empty() && platform_.files.makeDirectories(*iconDirectory_) && platform_.files.replace(*file, bytes);
}

std::optional<std::filesystem::path> CoinIcons::fileOf(std::string_view apiId) const {
    if (!iconDirectory_ || !isFileName(apiId)) {
        return std::nullopt;
    }
    return *iconDirectory_ / (std::string(apiId) + ".png");
}

}  // namespace glintar::menubar
