#pragma once

#include "platform/RunLoop.h"
#include "platform/secret/SecretAnswer.h"

#include <map>
#include <optional>
#include <vector>

namespace glintar::platform {

/// What is known of every item that was asked for, what the main thread believes, and what the service is to be asked.
///
/// Knows no threads: its owner locks around it. Whatever may change how an item reads answers whether the main thread
/// is to be told.
class SecretCache {
public:
    /// An item that could not be reached is asked for anew by a read this long after.
    static constexpr Duration kRetryAfter = std::chrono::seconds{30};

    enum class Notice { None, Due };
    enum class Outcome { Accepted, Refused };
    struct Write {
        SecretKey key;
        SecretAnswer secret;  ///< `Done` to store, `NotFound` to remove
    };

    // For the main thread, which afterwards knows what they answer or were given.

    /// Notes that the item is wanted; `First` when it never was before.
    enum class Want { First, Again, Nothing };
    [[nodiscard]] Want want(const SecretKey& key, Instant now);
    [[nodiscard]] SecretAnswer find(const SecretKey& key);
    void add(const SecretKey& key, std::string_view bytes);
    /// `NotFound`, and nothing to do, when the item is known not to be there.
    SecretStatus remove(const SecretKey& key);
    [[nodiscard]] bool isAnswered(const SecretKey& key) const;
    /// Whether a read has been given up on that still has no answer: then others need not be waited for either.
    [[nodiscard]] bool isSlow() const;

    // For the thread that asks the service.

    void readAllAgain();
    [[nodiscard]] std::vector<SecretKey> takeReads();
    [[nodiscard]] Notice answered(const SecretKey& key, SecretAnswer answer, Instant now);
    [[nodiscard]] std::vector<Write> takeWrites();
    [[nodiscard]] Notice wrote(const Write& write, Outcome outcome);
    /// Whether a write is under way or due.
    [[nodiscard]] bool isWriting() const;

private:
    struct Entry {
        SecretAnswer stored;                  ///< as the service last said
        std::optional<SecretAnswer> written;  ///< by us, and not yet accepted
        bool isTold = false;                  ///< the main thread knows how it reads
        bool isReadWanted = false;
        bool isReading = false;
        bool isReadOutdated = false;  ///< what the read under way brings no longer counts
        bool isWriteWanted = false;
        bool isWriting = false;
        Instant answeredAt{};

        [[nodiscard]] const SecretAnswer& visible() const { return written ? *written : stored; }
        [[nodiscard]] Notice noticeSince(const SecretAnswer& before) const;
        void readAgain();
        void write(SecretAnswer secret);
    };

    std::map<SecretKey, Entry> entries_;
};

}  // namespace glintar::platform
