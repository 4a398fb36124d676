#include "platform/NotificationCenter.h"

#include <atomic>
#include <utility>
#include <vector>

namespace glintar::platform {

struct NotificationCenter::Entry {
    std::string name;
    std::function<void()> observer;
    std::atomic<bool> dropped = false;  // the last holder of an observer may let go of it on any thread
};

NotificationCenter::NotificationCenter() = default;
NotificationCenter::~NotificationCenter() = default;

void NotificationCenter::post(std::string_view name) {
    std::erase_if(entries_, [](const auto& entry) { return entry->dropped.load(); });
    // A copy: an observer may register or drop others.
    std::vector<std::shared_ptr<Entry>> called;
    for (const auto& entry : entries_) {
        if (entry->name == name) {
            called.push_back(entry);
        }
    }
    for (const auto& entry : called) {
        if (!entry->dropped) {
            entry->observer();
        }
    }
}

std::unique_ptr<NotificationCenter::Observation> NotificationCenter::observe(std::string_view name,
                                                                             std::function<void()> observer) {
    auto entry = std::make_shared<Entry>(std::string(name), std::move(observer));
    entries_.push_back(entry);
    return std::make_unique<Observation>(std::move(entry));
}

NotificationCenter::Observation::Observation(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}

NotificationCenter::Observation::~Observation() {
    entry_->dropped = true;
}

}  // namespace glintar::platform
