#pragma once

#include "support/TemporaryFolder.h"

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace glintar::support {

/// What the server does with a request for one path.
struct LoopbackReply {
    enum class Manner {
        Whole,     ///< the body with its length
        Chunked,   ///< the body in chunks, its length untold
        Endless,   ///< the body again and again, in chunks, until the client goes away
        Stall,     ///< the length of the whole body, `sentBytes` of it, then silence
        Truncate,  ///< the same, but the connection is closed
        Silent,    ///< not a byte; the connection stays open
        Drip       ///< whole, but one byte at a time with `delay` before each
    };

    int status = 200;
    httplib::Headers headers = {};
    std::string body = {};
    Manner manner = Manner::Whole;
    std::size_t sentBytes = 0;
    std::chrono::milliseconds delay{0};  ///< before the first byte
    bool gzip = false;                   ///< compresses `body` for a client that takes it so
    bool close = false;                  ///< closes the connection after the answer, without having said so
};

struct LoopbackRequest {
    std::string method;
    std::string target;  ///< path and query
    httplib::Headers headers = {};
    int connection = 0;  ///< counted from 1 in the order of their first requests

    /// All values of the header, whatever its case.
    [[nodiscard]] std::vector<std::string> values(const std::string& name) const;
};

/// A certificate authority made for one test, and a certificate for localhost and 127.0.0.1 that it signed. Its files
/// live in a temporary folder until it is destroyed.
class TestAuthority {
public:
    /// Throws `std::runtime_error` where the openssl program does not do its work.
    TestAuthority();

    /// The authority's certificate (PEM), as SSL_CERT_FILE takes it.
    [[nodiscard]] std::filesystem::path file() const { return folder_.path() / "authority.pem"; }

    /// A folder that holds the certificate under the hash of its name, as SSL_CERT_DIR takes it.
    [[nodiscard]] std::filesystem::path directory() const { return folder_.path() / "hashed"; }

    /// The server's certificate and its key (PEM).
    [[nodiscard]] std::filesystem::path serverCertificate() const { return folder_.path() / "server.pem"; }
    [[nodiscard]] std::filesystem::path serverKey() const { return folder_.path() / "server.key"; }

private:
    test::TemporaryFolder folder_;
};

/// A small HTTP/1.1 server on 127.0.0.1, on a port of its own, for tests. A thread a connection; a path that nobody
/// scripted answers 404. Thread-safe. Its destructor ends whatever is under way.
class LoopbackServer {
public:
    enum class Transport { Plain, Tls };

    explicit LoopbackServer(Transport transport = Transport::Plain);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// From now on, requests for the path (without the query) are answered so.
    void on(std::string path, LoopbackReply reply);

    [[nodiscard]] std::string url(std::string_view path, std::string_view host = "127.0.0.1") const;
    [[nodiscard]] std::vector<LoopbackRequest> requests() const;

    /// Waits until so many requests have come in; false when that takes more than ten seconds.
    [[nodiscard]] bool waitForRequests(std::size_t count) const;

    /// The authority that signed the server's certificate; TLS only.
    [[nodiscard]] const TestAuthority& authority() const { return *authority_; }

private:
    void answer(const httplib::Request& request, httplib::Response& response);
    void pause(std::chrono::milliseconds time);

    std::unique_ptr<TestAuthority> authority_;
    std::unique_ptr<httplib::Server> server_;
    int port_ = 0;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::map<std::string, LoopbackReply, std::less<>> replies_;
    std::vector<LoopbackRequest> requests_;
    std::vector<int> connections_;  ///< the other ends' ports
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace glintar::support
