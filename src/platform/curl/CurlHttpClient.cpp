#include "platform/curl/CurlHttpClient.h"

#include "platform/curl/CurlExchange.h"
#include "platform/curl/CurlInbox.h"
#include "platform/curl/CurlLoop.h"

#include <pthread.h>
#include <signal.h>

namespace glintar::platform {
namespace {

class Call final : public HttpCall {
public:
    Call(std::weak_ptr<CurlInbox> inbox, std::uint64_t id) : inbox_(std::move(inbox)), id_(id) {}

    void cancel() override {
        if (const auto inbox = inbox_.lock()) {
            inbox->post([id = id_](CurlLoop* loop) { loop->cancel(id); });
        }
    }

private:
    std::weak_ptr<CurlInbox> inbox_;
    std::uint64_t id_;
};

/// A thread inherits the signal mask. With all signals blocked it takes none that is meant for the main thread, and
/// writing to a closed connection raises no SIGPIPE.
std::thread startWithoutSignals(std::shared_ptr<CurlInbox> inbox) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread([inbox = std::move(inbox)] {
        pthread_setname_np(pthread_self(), "glintar-http");
        CurlLoop{*inbox}.run();
    });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

}  // namespace

CurlHttpClient::CurlHttpClient() : inbox_(std::make_shared<CurlInbox>()) {}

CurlHttpClient::~CurlHttpClient() {
    inbox_->post([](CurlLoop* loop) { loop->stop(); });
    if (thread_.joinable()) {
        thread_.join();
    }
}

std::shared_ptr<HttpCall> CurlHttpClient::send(HttpRequest request, HttpCompletion completion) {
    std::call_once(started_, [this] { thread_ = startWithoutSignals(inbox_); });
    const std::uint64_t id = ++lastId_;
    auto exchange = std::make_unique<CurlExchange>(std::move(request), std::move(completion), Instant::clock::now());
    inbox_->post(
        [id, exchange = std::move(exchange)](CurlLoop* loop) mutable { loop->start(id, std::move(exchange)); });
    return std::make_shared<Call>(inbox_, id);
}

void CurlHttpClient::dropConnections() {
    inbox_->post([](CurlLoop* loop) { loop->dropConnections(); });
}

}  // namespace glintar::platform
