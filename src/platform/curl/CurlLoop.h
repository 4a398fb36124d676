#pragma once

#include "platform/HttpClient.h"
#include "platform/RunLoop.h"
#include "platform/curl/CurlHandles.h"
#include "platform/curl/CurlTrust.h"

#include <curl/curl.h>

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace glintar::platform {

class CurlExchange;
class CurlInbox;

/// What the HTTP thread does: takes work, moves bytes, completes what has ended, sleeps. Idle, it is not woken.
class CurlLoop {
public:
    explicit CurlLoop(CurlInbox& inbox);
    ~CurlLoop();
    CurlLoop(const CurlLoop&) = delete;
    CurlLoop& operator=(const CurlLoop&) = delete;

    /// Returns once it is to stop and everything has been completed.
    void run();

    // What tasks in the inbox call.

    void start(std::uint64_t id, std::unique_ptr<CurlExchange> exchange);
    void cancel(std::uint64_t id);  ///< nothing happens when it has ended already
    void dropConnections();
    void stop() { isStopping_ = true; }

private:
    struct Active {
        std::uint64_t id = 0;
        std::unique_ptr<CurlExchange> exchange;
        CurlEasy handle;
    };

    bool takeWork();
    void endAll(const HttpResult& result);
    void launch(Active& active);
    void readMessages();
    void endStalled();
    void end(std::uint64_t id, HttpResult result);
    void complete(CurlExchange& exchange, HttpResult result);
    [[nodiscard]] int pollMilliseconds() const;
    [[nodiscard]] CurlEasy takeHandle();

    CurlInbox& inbox_;
    CURLM* multi_;
    CURLSH* share_;
    CurlTrust trust_;
    std::map<std::uint64_t, Active> active_;
    std::vector<CurlEasy> spare_;
    bool trimWanted_ = false;
    bool isStopping_ = false;
};

}  // namespace glintar::platform
