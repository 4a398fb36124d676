#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace glintar::platform {

class CurlExchange;

/// Where other threads leave work for the HTTP thread, which they wake. Thread-safe.
class CurlInbox {
public:
    struct Mail {
        std::vector<std::pair<std::uint64_t, std::unique_ptr<CurlExchange>>> added;
        std::vector<std::uint64_t> cancelled;  ///< may name what has ended long ago
        std::uint64_t lastDropped = 0;  ///< none up to this one may go on, nor any connection; 0: nothing to drop
        bool stopping = false;
    };

    CurlInbox();
    ~CurlInbox();

    std::uint64_t submit(std::unique_ptr<CurlExchange> exchange);
    void cancel(std::uint64_t id);
    void dropConnections();
    void stop();

    /// Everything that came in since the last call, in its order.
    [[nodiscard]] Mail take();

    /// Says what to wake; null when there is nothing (any more). Without it, mail waits for the next `take`.
    void wake(CURLM* multi);

private:
    void wakeLocked() const;
    std::mutex mutex_;
    Mail mail_;
    std::uint64_t lastId_ = 0;
    CURLM* multi_ = nullptr;
};

}  // namespace glintar::platform
