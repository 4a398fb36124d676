#include "platform/virtual/VirtualHttpClient.h"

#include <algorithm>

namespace glintar::platform {

class VirtualHttpClient::Call final : public HttpCall {
public:
    explicit Call(HttpCompletion completion) : completion_(std::move(completion)) {}

    void complete(HttpResult result) {
        if (auto completion = std::exchange(completion_, nullptr)) {
            completion(std::move(result));
        }
    }

    void cancel() override { complete(std::unexpected(HttpError{HttpError::Kind::Cancelled, "cancelled"})); }

private:
    HttpCompletion completion_;
};

void VirtualHttpClient::answer(std::string_view addressPart, std::string body, int status) {
    rules_.push_back({std::string(addressPart), HttpResponse{status, std::move(body)}});
}

void VirtualHttpClient::fail(std::string_view addressPart, HttpError error) {
    rules_.push_back({std::string(addressPart), std::unexpected(std::move(error))});
}

void VirtualHttpClient::answerOnce(std::string_view addressPart, std::string body, int status) {
    once_.push_back({std::string(addressPart), HttpResponse{status, std::move(body)}});
}

void VirtualHttpClient::failOnce(std::string_view addressPart, HttpError error) {
    once_.push_back({std::string(addressPart), std::unexpected(std::move(error))});
}

int VirtualHttpClient::asked(std::string_view addressPart) const {
    return static_cast<int>(
        std::ranges::count_if(requests, [&](const HttpRequest& request) { return request.url.contains(addressPart); }));
}

std::shared_ptr<HttpCall> VirtualHttpClient::send(HttpRequest request, HttpCompletion completion) {
    auto call = std::make_shared<Call>(std::move(completion));
    Duration delay = latency;
    if (!latencies.empty()) {
        delay = latencies.front();
        latencies.erase(latencies.begin());
    }
    runLoop_.postAfter(delay, [call, result = resultFor(request.url)]() mutable { call->complete(std::move(result)); });
    requests.push_back(std::move(request));
    std::erase_if(underWay_, [](const auto& earlier) { return earlier.expired(); });
    underWay_.push_back(call);
    return call;
}

void VirtualHttpClient::dropConnections() {
    ++drops;
    for (const auto& weak : std::exchange(underWay_, {})) {
        if (const auto call = weak.lock()) {
            call->complete(std::unexpected(HttpError{HttpError::Kind::Connection, "dropped"}));
        }
    }
}

HttpResult VirtualHttpClient::resultFor(std::string_view address) {
    const auto matches = [&](const Rule& rule) { return address.contains(rule.addressPart); };
    if (const auto rule = std::ranges::find_if(once_, matches); rule != once_.end()) {
        HttpResult result = std::move(rule->result);
        once_.erase(rule);
        return result;
    }
    for (auto rule = rules_.rbegin(); rule != rules_.rend(); ++rule) {
        if (matches(*rule)) {
            return rule->result;
        }
    }
    return std::unexpected(HttpError{HttpError::Kind::Connection, "nobody planned for " + std::string(address)});
}

}  // namespace glintar::platform
