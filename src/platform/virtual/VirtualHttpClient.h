#pragma once

#include "platform/HttpClient.h"
#include "platform/RunLoop.h"

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::platform {

/// A network that answers as the test scripts it. An address nobody planned for fails with a connection error.
class VirtualHttpClient final : public HttpClient {
public:
    explicit VirtualHttpClient(RunLoop& runLoop) : runLoop_(runLoop) {}

    /// Answers every request whose address contains the text; the newest matching rule counts.
    void answer(std::string_view addressPart, std::string body, int status = 200);
    void fail(std::string_view addressPart, HttpError error);

    /// Answers the next such request only, before the rules above; several queue up.
    void answerOnce(std::string_view addressPart, std::string body, int status = 200);
    void failOnce(std::string_view addressPart, HttpError error);

    /// How many of the requests had an address that contains the text.
    [[nodiscard]] int asked(std::string_view addressPart) const;

    std::vector<HttpRequest> requests;                ///< all of them, in order
    Duration latency = std::chrono::milliseconds{5};  ///< from sending to completion
    std::vector<Duration> latencies;                  ///< of the next requests, one each, before `latency` counts again

    std::shared_ptr<HttpCall> send(HttpRequest request, HttpCompletion completion) override;
    void dropConnections() override;
    int drops = 0;  ///< how often connections were dropped

private:
    struct Rule {
        std::string addressPart;
        HttpResult result;
    };
    class Call;
    HttpResult resultFor(std::string_view address);

    RunLoop& runLoop_;
    std::deque<Rule> once_;
    std::vector<Rule> rules_;
    std::vector<std::weak_ptr<Call>> underWay_;
};

}  // namespace glintar::platform
