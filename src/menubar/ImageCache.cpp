#include "menubar/ImageCache.h"

#include <iterator>
#include <utility>

namespace glintar::menubar {

platform::ImagePtr ImageCache::find(std::string_view key) {
    const std::lock_guard lock(mutex_);
    const auto found = byKey_.find(key);
    if (found == byKey_.end()) {
        return nullptr;
    }
    entries_.splice(entries_.begin(), entries_, found->second);
    return found->second->image;
}

bool ImageCache::insert(std::string_view key, platform::ImagePtr image) {
    static constexpr std::size_t kBookkeeping = 256;
    const std::size_t bytes = image->byteCount() + key.size() + kBookkeeping;
    const std::lock_guard lock(mutex_);
    if (const auto found = byKey_.find(key); found != byKey_.end()) {
        drop(found->second);
    }
    if (bytes > maxBytes_) {
        return false;
    }
    while (bytes_ + bytes > maxBytes_) {
        drop(std::prev(entries_.end()));
    }
    entries_.push_front({std::string(key), std::move(image), bytes});
    byKey_.emplace(entries_.front().key, entries_.begin());
    bytes_ += bytes;
    return true;
}

void ImageCache::remove(std::string_view key) {
    const std::lock_guard lock(mutex_);
    if (const auto found = byKey_.find(key); found != byKey_.end()) {
        drop(found->second);
    }
}

void ImageCache::drop(Entries::iterator entry) {
    bytes_ -= entry->bytes;
    byKey_.erase(entry->key);
    entries_.erase(entry);
}

}  // namespace glintar::menubar
