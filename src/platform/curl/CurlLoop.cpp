#include "platform/curl/CurlLoop.h"

#include "platform/curl/CurlExchange.h"
#include "platform/curl/CurlInbox.h"

#include <malloc.h>

#include <algorithm>
#include <new>
#include <string>

namespace glintar::platform {
namespace {

using std::chrono::milliseconds;

constexpr long kKeptConnections = 8;
constexpr std::size_t kSpareHandles = 4;
constexpr std::size_t kLargeBody = std::size_t{64} << 10;
constexpr milliseconds kNever = std::chrono::hours{24};

HttpResult cancelled() {
    return std::unexpected(HttpError{HttpError::Kind::Cancelled, curl_easy_strerror(CURLE_ABORTED_BY_CALLBACK)});
}

CURLM* newMulti() {
    CURLM* const multi = curl_multi_init();
    if (multi == nullptr) {
        throw std::bad_alloc();
    }
    curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, kKeptConnections);
    return multi;
}

/// Never undone: other threads may still be inside a name look-up that curl began.
void initializeCurl() {
    static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (code != CURLE_OK) {
        throw std::bad_alloc();
    }
}

}  // namespace

CurlLoop::CurlLoop(CurlInbox& inbox) : inbox_(inbox) {
    initializeCurl();
    share_ = curl_share_init();
    if (share_ == nullptr) {
        throw std::bad_alloc();
    }
    multi_ = newMulti();
    curl_share_setopt(share_, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    inbox_.wake(multi_);
}

CurlLoop::~CurlLoop() {
    inbox_.wake(nullptr);
    spare_.clear();
    curl_multi_cleanup(multi_);
    curl_share_cleanup(share_);
}

void CurlLoop::run() {
    while (takeWork()) {
        int running = 0;
        curl_multi_perform(multi_, &running);
        readMessages();
        endStalled();
        if (std::exchange(trimWanted_, false)) {
            malloc_trim(0);
        }
        curl_multi_poll(multi_, nullptr, 0, pollMilliseconds(), nullptr);
    }
}

/// False once everything has ended.
bool CurlLoop::takeWork() {
    bool isMore = true;
    while (isMore) {
        auto tasks = inbox_.take();
        for (auto& task : tasks) {
            task(this);
        }
        isMore = isStopping_ && !tasks.empty();  // a completion may have sent something
        if (isStopping_) {
            endAll(cancelled());
        }
    }
    return !isStopping_;
}

void CurlLoop::start(std::uint64_t id, std::unique_ptr<CurlExchange> exchange) {
    Active& active = active_[id];
    active = {.id = id, .exchange = std::move(exchange), .handle = takeHandle()};
    launch(active);
}

void CurlLoop::cancel(std::uint64_t id) {
    end(id, cancelled());
}

/// The connections belong to the multi handle, and so does what was learnt of names.
void CurlLoop::dropConnections() {
    endAll(std::unexpected(HttpError{HttpError::Kind::Connection, "The connection was given up"}));
    CURLM* const old = std::exchange(multi_, newMulti());
    inbox_.wake(multi_);
    curl_multi_cleanup(old);
    curl_multi_wakeup(multi_);  // work that came meanwhile woke the old one
}

void CurlLoop::endAll(const HttpResult& result) {
    while (!active_.empty()) {
        end(active_.begin()->first, result);
    }
}

void CurlLoop::launch(Active& active) {
    CURL* const handle = active.handle.get();
    if (auto error = active.exchange->prepare(handle, trust_)) {
        end(active.id, std::unexpected(std::move(*error)));
        return;
    }
    curl_easy_setopt(handle, CURLOPT_PRIVATE, &active);
    curl_multi_add_handle(multi_, handle);
}

void CurlLoop::readMessages() {
    int waiting = 0;
    while (const CURLMsg* const message = curl_multi_info_read(multi_, &waiting)) {
        CURL* const handle = message->easy_handle;
        const CURLcode code = message->data.result;
        Active* active = nullptr;
        curl_easy_getinfo(handle, CURLINFO_PRIVATE, &active);
        curl_multi_remove_handle(multi_, handle);
        if (auto result = active->exchange->advance(handle, code, trust_)) {
            end(active->id, std::move(*result));
        } else {
            launch(*active);
        }
    }
}

void CurlLoop::endStalled() {
    const Instant now = Instant::clock::now();
    for (auto next = active_.begin(); next != active_.end();) {
        const auto& [id, active] = *next++;
        if (active.exchange->stallsAt() <= now) {
            end(id, std::unexpected(HttpError{HttpError::Kind::Timeout, curl_easy_strerror(CURLE_OPERATION_TIMEDOUT)}));
        }
    }
}

void CurlLoop::end(std::uint64_t id, HttpResult result) {
    auto node = active_.extract(id);
    if (node.empty()) {
        return;
    }
    Active& active = node.mapped();
    curl_multi_remove_handle(multi_, active.handle.get());
    CurlExchange::release(active.handle.get());
    if (spare_.size() < kSpareHandles) {
        spare_.push_back(std::move(active.handle));
    }
    complete(*active.exchange, std::move(result));
}

void CurlLoop::complete(CurlExchange& exchange, HttpResult result) {
    trimWanted_ = trimWanted_ || (result && result->body.size() > kLargeBody);
    exchange.finish(std::move(result));
}

int CurlLoop::pollMilliseconds() const {
    Instant next = Instant::clock::now() + kNever;
    for (const auto& [id, active] : active_) {
        next = std::min(next, active.exchange->stallsAt());
    }
    const auto left = std::chrono::ceil<milliseconds>(next - Instant::clock::now());
    return static_cast<int>(std::max(left, milliseconds::zero()).count());
}

CurlEasy CurlLoop::takeHandle() {
    if (!spare_.empty()) {
        CurlEasy handle = std::move(spare_.back());
        spare_.pop_back();
        return handle;
    }
    CurlEasy handle(curl_easy_init());
    if (!handle) {
        throw std::bad_alloc();
    }
    CurlExchange::configure(handle.get());
    curl_easy_setopt(handle.get(), CURLOPT_SHARE, share_);
    return handle;
}

}  // namespace glintar::platform
