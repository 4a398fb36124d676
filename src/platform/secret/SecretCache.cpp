#include "platform/secret/SecretCache.h"

#include <algorithm>
#include <utility>

namespace glintar::platform {

SecretCache::Notice SecretCache::Entry::noticeSince(const SecretAnswer& before) const {
    return isTold && visible() != before ? Notice::Due : Notice::None;
}

void SecretCache::Entry::readAgain() {
    (isReading ? isReadOutdated : isReadWanted) = true;
}

void SecretCache::Entry::write(SecretAnswer secret) {
    isWriteWanted = true;
    isTold = true;
    written = std::move(secret);
}

SecretCache::Want SecretCache::want(const SecretKey& key, Instant now) {
    const auto [item, isNew] = entries_.try_emplace(key);
    auto& entry = item->second;
    if (isNew) {
        entry.isReadWanted = true;
        return Want::First;
    }
    const bool isDue = entry.stored.status == SecretStatus::Unavailable && now - entry.answeredAt >= kRetryAfter;
    if (!isDue || entry.isReading || entry.isReadWanted) {
        return Want::Nothing;
    }
    entry.isReadWanted = true;
    return Want::Again;
}

SecretAnswer SecretCache::find(const SecretKey& key) {
    auto& entry = entries_.at(key);
    entry.isTold = true;
    return entry.visible();
}

void SecretCache::add(const SecretKey& key, std::string_view bytes) {
    entries_[key].write(SecretAnswer::found(bytes));
}

SecretStatus SecretCache::remove(const SecretKey& key) {
    auto& entry = entries_[key];
    if (entry.visible().status == SecretStatus::NotFound) {
        return SecretStatus::NotFound;
    }
    entry.write({SecretStatus::NotFound, {}});
    return SecretStatus::Done;
}

bool SecretCache::isAnswered(const SecretKey& key) const {
    return entries_.at(key).visible().status != SecretStatus::Pending;
}

bool SecretCache::isSlow() const {
    return std::ranges::any_of(entries_, [](const auto& item) {
        return item.second.isTold && item.second.visible().status == SecretStatus::Pending;
    });
}

void SecretCache::readAllAgain() {
    for (auto& [key, entry] : entries_) {
        entry.readAgain();
    }
}

std::vector<SecretKey> SecretCache::takeReads() {
    std::vector<SecretKey> keys;
    for (auto& [key, entry] : entries_) {
        if (entry.isReadWanted && !entry.isReading) {
            entry.isReadWanted = false;
            entry.isReading = true;
            keys.push_back(key);
        }
    }
    return keys;
}

SecretCache::Notice SecretCache::answered(const SecretKey& key, SecretAnswer answer, Instant now) {
    auto& entry = entries_.at(key);
    entry.isReading = false;
    if (std::exchange(entry.isReadOutdated, false)) {
        entry.isReadWanted = true;
        return Notice::None;
    }
    entry.answeredAt = now;
    // A service that goes away takes nothing along: the secrets it gave out stay good.
    if (answer.status == SecretStatus::Unavailable && entry.stored.status == SecretStatus::Done) {
        return Notice::None;
    }
    const auto before = entry.visible();
    entry.stored = std::move(answer);
    return entry.noticeSince(before);
}

std::vector<SecretCache::Write> SecretCache::takeWrites() {
    std::vector<Write> writes;
    for (auto& [key, entry] : entries_) {
        if (entry.isWriteWanted && !entry.isWriting) {
            entry.isWriteWanted = false;
            entry.isWriting = true;
            writes.push_back({key, *entry.written});
        }
    }
    return writes;
}

SecretCache::Notice SecretCache::wrote(const Write& write, Outcome outcome) {
    auto& entry = entries_.at(write.key);
    const auto before = entry.visible();
    entry.isWriting = false;
    if (outcome == Outcome::Accepted) {
        entry.stored = write.secret;
        entry.isReadOutdated = entry.isReading;
    } else {
        entry.readAgain();
    }
    if (!entry.isWriteWanted) {
        entry.written.reset();
    }
    return entry.noticeSince(before);
}

bool SecretCache::isWriting() const {
    return std::ranges::any_of(entries_,
                               [](const auto& item) { return item.second.isWriting || item.second.isWriteWanted; });
}

}  // namespace glintar::platform
