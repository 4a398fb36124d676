#include "support/LoopbackServer.h"

#include "support/Program.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace glintar::support {
namespace {

using Manner = LoopbackReply::Manner;

constexpr const char* kPlainText = "text/plain";       // packed for clients that unpack
constexpr const char* kBytes = "application/x-bytes";  // never packed

}  // namespace

std::vector<std::string> LoopbackRequest::values(const std::string& name) const {
    std::vector<std::string> found;
    for (auto [at, end] = headers.equal_range(name); at != end; ++at) {
        found.push_back(at->second);
    }
    return found;
}

TestAuthority::TestAuthority() {
    // "-x509" brings what an authority needs: CA:TRUE.
    constexpr const char* kScript = R"(set -e; cd {}; mkdir hashed
        new="openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 1"
        $new -subj "/CN=Loopback test authority" -keyout authority.key -out authority.pem
        $new -subj /CN=localhost -addext subjectAltName=DNS:localhost,IP:127.0.0.1 \
            -CA authority.pem -CAkey authority.key -addext basicConstraints=CA:FALSE -keyout server.key -out server.pem
        cp authority.pem hashed/; openssl rehash hashed; echo done)";
    if (!test::outputOf({"sh", "-c", fmt::format(kScript, folder_.path().string())}).ends_with("done\n")) {
        throw std::runtime_error("openssl makes no certificates");
    }
}

LoopbackServer::LoopbackServer(Transport transport)
    : authority_(transport == Transport::Tls ? std::make_unique<TestAuthority>() : nullptr),
      server_(authority_ ? std::make_unique<httplib::SSLServer>(authority_->serverCertificate().c_str(),
                                                                authority_->serverKey().c_str())
                         : std::make_unique<httplib::Server>()) {
    constexpr std::size_t kConnections = 128;  // each keeps its thread
    server_->new_task_queue = [] { return new httplib::ThreadPool(kConnections); };
    server_->set_tcp_nodelay(true);
    server_->set_keep_alive_max_count(1'000'000);
    server_->set_keep_alive_timeout(60);
    server_->Get(".*",
                 [this](const httplib::Request& request, httplib::Response& response) { answer(request, response); });
    int listening = -1;
    server_->set_socket_options([&listening](int socket) { listening = socket; });
    port_ = server_->bind_to_any_port("127.0.0.1");
    if (port_ < 0) {
        throw std::runtime_error("cannot listen on 127.0.0.1");
    }
    ::listen(listening, SOMAXCONN);  // who finds the library's own queue of five full comes again a second later
    server_->set_socket_options(nullptr);
    thread_ = std::thread([this] { server_->listen_after_bind(); });
    while (!server_->is_running()) {
        std::this_thread::yield();
    }
}

LoopbackServer::~LoopbackServer() {
    {
        const std::scoped_lock lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    server_->stop();
    // It would wait for clients that keep their connection open.
    for (int socket = 3; socket < 4096; ++socket) {
        sockaddr_in end{};
        socklen_t length = sizeof end;
        if (::getsockname(socket, reinterpret_cast<sockaddr*>(&end), &length) == 0 && end.sin_family == AF_INET &&
            ntohs(end.sin_port) == port_) {
            ::shutdown(socket, SHUT_RDWR);
        }
    }
    thread_.join();
}

void LoopbackServer::on(std::string path, LoopbackReply reply) {
    const std::scoped_lock lock(mutex_);
    replies_.insert_or_assign(std::move(path), std::move(reply));
}

std::string LoopbackServer::url(std::string_view path, std::string_view host) const {
    return fmt::format("{}://{}:{}{}", authority_ ? "https" : "http", host, port_, path);
}

std::vector<LoopbackRequest> LoopbackServer::requests() const {
    const std::scoped_lock lock(mutex_);
    return requests_;
}

bool LoopbackServer::waitForRequests(std::size_t count) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds{10}, [&] { return requests_.size() >= count; });
}

void LoopbackServer::answer(const httplib::Request& request, httplib::Response& response) {
    LoopbackReply reply{.status = 404};
    {
        const std::scoped_lock lock(mutex_);
        const auto connection = std::ranges::find(connections_, request.remote_port);
        const auto number = static_cast<int>(connection - connections_.begin()) + 1;
        if (connection == connections_.end()) {
            connections_.push_back(request.remote_port);
        }
        auto& seen = requests_.emplace_back(request.method, request.target, request.headers, number);
        std::erase_if(seen.headers,
                      [](const auto& header) { return header.first.contains('_'); });  // the library's own
        if (const auto found = replies_.find(request.path); found != replies_.end()) {
            reply = found->second;
        }
    }
    changed_.notify_all();
    response.status = reply.status;
    response.headers.insert(reply.headers.begin(), reply.headers.end());
    if (reply.manner == Manner::Silent) {
        reply.delay = std::chrono::hours{1};
    }
    pause(reply.delay);
    const auto size = reply.body.size();
    if (reply.manner == Manner::Whole && !reply.close) {
        response.set_content(std::move(reply.body), reply.gzip ? kPlainText : kBytes);
    } else if (reply.manner == Manner::Chunked || reply.manner == Manner::Endless) {
        response.set_chunked_content_provider(kBytes, [reply](std::size_t, httplib::DataSink& sink) {
            const bool isWritten = sink.write(reply.body.data(), reply.body.size());
            if (reply.manner == Manner::Chunked) {
                sink.done();
            }
            return isWritten;
        });
    } else {
        response.set_content_provider(size, kBytes,
                                      [this, reply](std::size_t at, std::size_t, httplib::DataSink& sink) {
                                          const char* const bytes = reply.body.data() + at;
                                          if (reply.manner == Manner::Drip) {
                                              pause(reply.delay);
                                              return sink.write(bytes, 1);
                                          }
                                          sink.write(bytes, reply.close ? reply.body.size() : reply.sentBytes);
                                          if (reply.manner == Manner::Stall) {
                                              pause(std::chrono::hours{1});
                                          }
                                          return false;  // the connection is closed
                                      });
    }
}

void LoopbackServer::pause(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, time, [this] { return stopping_; });
}

}  // namespace glintar::support
