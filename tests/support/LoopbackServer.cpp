#include "support/LoopbackServer.h"

#include "support/TestAuthority.h"

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <csignal>
#include <optional>
#include <stdexcept>

namespace glintar::support {
namespace {

using Manner = LoopbackReply::Manner;

bool equalFolded(std::string_view left, std::string_view right) {
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::ranges::equal(left, right, {}, lower, lower);
}

std::string gzipped(std::string_view text) {
    constexpr int kGzipWindow = 15 + 16;  // zlib's way of asking for gzip framing
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, kGzipWindow, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("deflateInit2");
    }
    std::string packed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

LoopbackRequest parseHead(std::string_view head) {
    LoopbackRequest request;
    const auto takeUntil = [&head](std::string_view mark) {
        const std::size_t end = std::min(head.find(mark), head.size());
        std::string taken(head.substr(0, end));
        head.remove_prefix(std::min(end + mark.size(), head.size()));
        return taken;
    };
    request.method = takeUntil(" ");
    request.target = takeUntil(" ");
    takeUntil("\r\n");
    while (!head.empty()) {
        const std::string line = takeUntil("\r\n");
        const std::size_t colon = line.find(':');
        const std::size_t value = line.find_first_not_of(' ', std::min(colon, line.size() - 1) + 1);
        request.headers.emplace_back(line.substr(0, colon), value == std::string::npos ? "" : line.substr(value));
    }
    return request;
}

}  // namespace

std::vector<std::string> LoopbackRequest::values(std::string_view name) const {
    std::vector<std::string> found;
    for (const auto& [key, value] : headers) {
        if (equalFolded(key, name)) {
            found.push_back(value);
        }
    }
    return found;
}

/// One accepted socket, with or without TLS. The server closes the socket itself.
class LoopbackServer::Connection {
public:
    Connection(int socket, SSL_CTX* context) : socket_(socket) {
        if (context != nullptr) {
            tls_.reset(SSL_new(context));
            SSL_set_fd(tls_.get(), socket);
            usable_ = SSL_accept(tls_.get()) == 1;
        }
    }

    /// Up to the empty line; none once the client has gone.
    std::optional<LoopbackRequest> readRequest() {
        std::size_t end = 0;
        while ((end = buffer_.find("\r\n\r\n")) == std::string::npos) {
            if (!readMore()) {
                return std::nullopt;
            }
        }
        LoopbackRequest request = parseHead(std::string_view(buffer_).substr(0, end + 2));
        buffer_.erase(0, end + 4);
        return request;
    }

    bool write(std::string_view bytes) {
        while (!bytes.empty() && usable_) {
            const auto sent = tls_ ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size()))
                                   : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            usable_ = sent > 0;
            bytes.remove_prefix(usable_ ? static_cast<std::size_t>(sent) : 0);
        }
        return usable_;
    }

    void waitForClose() {
        while (readMore()) {
        }
    }

private:
    bool readMore() {
        char chunk[4096];
        const auto count =
            !usable_ ? 0 : (tls_ ? SSL_read(tls_.get(), chunk, sizeof chunk) : ::recv(socket_, chunk, sizeof chunk, 0));
        usable_ = count > 0;
        buffer_.append(chunk, usable_ ? static_cast<std::size_t>(count) : 0);
        return usable_;
    }

    int socket_;
    std::unique_ptr<SSL, decltype(&SSL_free)> tls_{nullptr, &SSL_free};
    std::string buffer_;
    bool usable_ = true;
};

LoopbackServer::LoopbackServer(Transport transport) {
    if (transport == Transport::Tls) {
        std::signal(SIGPIPE, SIG_IGN);  // OpenSSL writes without MSG_NOSIGNAL
        authority_ = std::make_unique<TestAuthority>();
    }
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        ::listen(listener_, SOMAXCONN) != 0 ||
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        throw std::runtime_error("cannot listen on 127.0.0.1");
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { acceptAll(); });
}

LoopbackServer::~LoopbackServer() {
    {
        const std::scoped_lock lock(mutex_);
        stopping_ = true;
        for (const int socket : open_) {
            ::shutdown(socket, SHUT_RDWR);
        }
    }
    changed_.notify_all();
    ::shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    for (std::thread& thread : threads_) {
        thread.join();
    }
    ::close(listener_);
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

void LoopbackServer::acceptAll() {
    for (int number = 1;; ++number) {
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) {
            return;
        }
        const int on = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const std::scoped_lock lock(mutex_);
        if (stopping_) {
            ::close(socket);
            return;
        }
        open_.insert(socket);
        threads_.emplace_back([this, socket, number] { serve(socket, number); });
    }
}

void LoopbackServer::serve(int socket, int number) {
    {
        Connection connection(socket, authority_ ? authority_->context() : nullptr);
        bool open = true;
        while (open) {
            auto request = connection.readRequest();
            if (!request) {
                break;
            }
            request->connection = number;
            LoopbackReply reply{.status = 404};
            {
                const std::scoped_lock lock(mutex_);
                requests_.push_back(*request);
                const auto found = replies_.find(request->target.substr(0, request->target.find('?')));
                reply = found == replies_.end() ? reply : found->second;
            }
            changed_.notify_all();
            open = answer(connection, *request, reply);
        }
    }
    const std::scoped_lock lock(mutex_);
    open_.erase(socket);
    ::close(socket);
}

/// True while the connection may carry another request.
bool LoopbackServer::answer(Connection& connection, const LoopbackRequest& request, const LoopbackReply& reply) {
    if (reply.manner == Manner::Silent) {
        connection.waitForClose();
        return false;
    }
    pause(reply.delay);
    const std::string body = reply.gzip ? gzipped(reply.body) : reply.body;
    std::string head = fmt::format("HTTP/1.1 {} Scripted\r\n", reply.status);
    for (const auto& [name, value] : reply.headers) {
        head += fmt::format("{}: {}\r\n", name, value);
    }
    if (reply.gzip) {
        head += "Content-Encoding: gzip\r\n";
    }
    const bool chunked = reply.manner == Manner::Chunked || reply.manner == Manner::Endless;
    head += chunked ? "Transfer-Encoding: chunked\r\n\r\n" : fmt::format("Content-Length: {}\r\n\r\n", body.size());
    if (!connection.write(head)) {
        return false;
    }
    return (request.method == "HEAD" || sendBody(connection, reply, body)) && !reply.close;
}

bool LoopbackServer::sendBody(Connection& connection, const LoopbackReply& reply, std::string_view body) {
    const auto chunk = [&] { return connection.write(fmt::format("{:x}\r\n{}\r\n", body.size(), body)); };
    switch (reply.manner) {
        case Manner::Whole:
            return connection.write(body);
        case Manner::Chunked:
            return (body.empty() || chunk()) && connection.write("0\r\n\r\n");
        case Manner::Endless:
            while (chunk()) {
            }
            return false;
        case Manner::Stall:
            connection.write(body.substr(0, reply.sentBytes));
            connection.waitForClose();
            return false;
        case Manner::Truncate:
            connection.write(body.substr(0, reply.sentBytes));
            return false;
        case Manner::Drip:
            for (const char& byte : body) {
                pause(reply.delay);
                if (!connection.write({&byte, 1})) {
                    return false;
                }
            }
            return true;
        case Manner::Silent:
            break;
    }
    return false;
}

void LoopbackServer::pause(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, time, [this] { return stopping_; });
}

}  // namespace glintar::support
