#pragma once

#include "platform/curl/CurlHttpClient.h"
#include "support/LoopbackServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <optional>

namespace glintar::platform {

using Kind = HttpError::Kind;
using Manner = support::LoopbackReply::Manner;

/// One request's result, which another thread waits for.
class Outcome {
public:
    HttpCompletion completion() {
        return [state = state_](HttpResult result) {
            const std::scoped_lock lock(state->mutex);
            state->result = std::move(result);
            ++state->count;
            state->done.notify_all();
        };
    }

    HttpResult wait() {
        std::unique_lock lock(state_->mutex);
        if (!state_->done.wait_for(lock, std::chrono::seconds{20}, [this] { return state_->result.has_value(); })) {
            return std::unexpected(HttpError{Kind::Other, "the completion never ran"});
        }
        return *state_->result;
    }

    /// How often the completion has run.
    int count() {
        const std::scoped_lock lock(state_->mutex);
        return state_->count;
    }

private:
    struct State {
        std::mutex mutex;
        std::condition_variable done;
        std::optional<HttpResult> result;
        int count = 0;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

inline std::string describe(const HttpResult& result) {
    return result ? "an answer" : result.error().description;
}

/// A client, a plain server beside it, and none of the machine's own settings.
class CurlFixture : public testing::Test {
protected:
    CurlFixture() {
        setenv("no_proxy", "*", 1);
        unsetenv("SSL_CERT_FILE");
        unsetenv("SSL_CERT_DIR");
    }

    HttpResult fetch(HttpRequest request) {
        Outcome outcome;
        client_->send(std::move(request), outcome.completion());
        return outcome.wait();
    }

    support::LoopbackServer server_;
    std::unique_ptr<CurlHttpClient> client_ = std::make_unique<CurlHttpClient>();
};

}  // namespace glintar::platform
