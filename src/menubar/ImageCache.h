#pragma once

#include "platform/Graphics.h"

#include <cstddef>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace glintar::menubar {

/// Pictures by key, in bounded memory: the picture that has not been used for longest goes first. Any thread.
class ImageCache {
public:
    explicit ImageCache(std::size_t maxBytes) : maxBytes_(maxBytes) {}

    /// Null when there is none.
    [[nodiscard]] platform::ImagePtr find(std::string_view key);

    /// Whether it is in now; what is larger than the whole cache is not.
    bool insert(std::string_view key, platform::ImagePtr image);
    void remove(std::string_view key);

private:
    struct Entry {
        std::string key;
        platform::ImagePtr image;
        std::size_t bytes = 0;
    };
    using Entries = std::list<Entry>;
    void drop(Entries::iterator entry);

    std::mutex mutex_;
    std::size_t maxBytes_;
    std::size_t bytes_ = 0;
    Entries entries_;                                                ///< the last used first
    std::unordered_map<std::string_view, Entries::iterator> byKey_;  ///< by the entries' own keys
};

}  // namespace glintar::menubar
