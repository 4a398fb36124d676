#pragma once

#include "platform/HttpClient.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

namespace glintar::platform {

class CurlInbox;

/// HTTP through libcurl, all of it on one thread, which starts with the first request and sleeps while there is
/// nothing to do. HTTP/2 where the server offers it; connections are kept; bodies arrive decompressed.
///
/// Certificates are always checked, against the system's authorities and those in SSL_CERT_FILE and SSL_CERT_DIR.
/// Proxies are taken from the environment as curl does. Headers that HTTP does not allow (a line break, a NUL, a
/// name that is no token) are left out. Error descriptions are curl's own.
///
/// Must not be destroyed from a completion.
class CurlHttpClient final : public HttpClient {
public:
    CurlHttpClient();
    ~CurlHttpClient() override;
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;

    std::shared_ptr<HttpCall> send(HttpRequest request, HttpCompletion completion) override;
    void dropConnections() override;

private:
    std::shared_ptr<CurlInbox> inbox_;
    std::atomic<std::uint64_t> lastId_ = 0;
    std::once_flag started_;
    std::thread thread_;
};

}  // namespace glintar::platform
