#include "platform/curl/CurlInbox.h"

#include "platform/curl/CurlExchange.h"

namespace glintar::platform {

CurlInbox::CurlInbox() = default;
CurlInbox::~CurlInbox() = default;

std::uint64_t CurlInbox::submit(std::unique_ptr<CurlExchange> exchange) {
    const std::scoped_lock lock(mutex_);
    mail_.added.emplace_back(++lastId_, std::move(exchange));
    wakeLocked();
    return lastId_;
}

void CurlInbox::cancel(std::uint64_t id) {
    const std::scoped_lock lock(mutex_);
    mail_.cancelled.push_back(id);
    wakeLocked();
}

void CurlInbox::dropConnections() {
    const std::scoped_lock lock(mutex_);
    mail_.lastDropped = lastId_;
    wakeLocked();
}

void CurlInbox::stop() {
    const std::scoped_lock lock(mutex_);
    mail_.stopping = true;
    wakeLocked();
}

CurlInbox::Mail CurlInbox::take() {
    const std::scoped_lock lock(mutex_);
    Mail taken = std::exchange(mail_, {});
    mail_.stopping = taken.stopping;
    return taken;
}

void CurlInbox::wake(CURLM* multi) {
    const std::scoped_lock lock(mutex_);
    multi_ = multi;
}

/// Under the lock, so that the handle cannot go away meanwhile.
void CurlInbox::wakeLocked() const {
    if (multi_ != nullptr) {
        curl_multi_wakeup(multi_);
    }
}

}  // namespace glintar::platform
