#include "platform/RunLoop.h"
#include "platform/curl/CurlFixture.h"

#include <dlfcn.h>
#include <netdb.h>

namespace {

std::mutex lookUpMutex;
std::condition_variable lookUpChanged;
bool lookUpsHang = false;
int hungLookUps = 0;

}  // namespace

/// Stands before the C library's, also for libcurl: a look-up of one name hangs until the test lets it go.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** found) {
    if (name != nullptr && std::string_view(name) == "hung.test") {
        std::unique_lock lock(lookUpMutex);
        ++hungLookUps;
        lookUpChanged.notify_all();
        lookUpChanged.wait_for(lock, std::chrono::seconds{8}, [] { return !lookUpsHang; });
        return EAI_FAIL;
    }
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(name, service, hints, found);
}

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;
using support::LoopbackReply;
using support::LoopbackServer;

using CurlEndingTest = CurlFixture;

/// Far below every time-out that is not under test, far above what a busy machine needs.
constexpr auto kSoon = 5s;

/// curl's timers count whole milliseconds.
constexpr auto kTimerGrain = 5ms;

/// While it lives, looking up the host of `kUrl` does not come back.
class HungLookUps {
public:
    static constexpr const char* kUrl = "http://hung.test/";

    HungLookUps() { hang(true); }
    ~HungLookUps() { hang(false); }
    HungLookUps(const HungLookUps&) = delete;
    HungLookUps& operator=(const HungLookUps&) = delete;

    void waitForOne() {
        std::unique_lock lock(lookUpMutex);
        ASSERT_TRUE(lookUpChanged.wait_for(lock, 10s, [] { return hungLookUps > 0; }));
    }

private:
    static void hang(bool on) {
        const std::scoped_lock lock(lookUpMutex);
        lookUpsHang = on;
        lookUpChanged.notify_all();
    }
};

struct Failure {
    const char* name;
    LoopbackReply reply;
    HttpRequest request;
    Kind kind;
    std::chrono::milliseconds atLeast{0};
};

TEST_F(CurlEndingTest, AFailureEndsWithItsKindInTime) {
    const std::string large(1'000'000, 'x');
    for (Failure row :
         {Failure{"SilentServer", {.manner = Manner::Silent}, {.stallTimeout = 300ms}, Kind::Timeout, 300ms},
          // Silence counts from the last byte, after a quick start too.
          Failure{"StallInTheBody",
                  {.body = large, .manner = Manner::Stall, .sentBytes = 500'000},
                  {.stallTimeout = 300ms},
                  Kind::Timeout,
                  300ms},
          Failure{"WholeExchangeTooLong", {.manner = Manner::Silent}, {.timeout = 300ms}, Kind::Timeout, 300ms},
          Failure{"Truncated", {.body = large, .manner = Manner::Truncate, .sentBytes = 100}, {}, Kind::Connection},
          Failure{"EndedBeforeTheBody", {.body = large, .manner = Manner::Truncate}, {}, Kind::Connection},
          // Known from the head: not a byte of the body is waited for.
          Failure{"TooLargeByItsLength",
                  {.body = large, .manner = Manner::Stall},
                  {.maxBodyBytes = 999'999},
                  Kind::TooLarge},
          Failure{"TooLargeInChunks",
                  {.body = large, .manner = Manner::Endless},
                  {.maxBodyBytes = 5'000'000},
                  Kind::TooLarge},
          Failure{"TooLargeUnpacked", {.body = large, .gzip = true}, {.maxBodyBytes = 999'999}, Kind::TooLarge},
          Failure{"NoBytesAllowed", {.body = "x"}, {.maxBodyBytes = 0}, Kind::TooLarge}}) {
        SCOPED_TRACE(row.name);
        server_.on("/", row.reply);
        row.request.url = server_.url("/");
        const auto start = Instant::clock::now();
        const HttpResult result = fetch(row.request);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().kind, row.kind) << describe(result);
        EXPECT_FALSE(result.error().description.empty());
        EXPECT_GE(Instant::clock::now() - start, row.atLeast - kTimerGrain);
        EXPECT_LT(Instant::clock::now() - start, kSoon);
    }
}

TEST_F(CurlEndingTest, TakesABodyOfExactlyTheBoundAndASlowOneThatKeepsComing) {
    server_.on("/exact", {.body = std::string(1000, 'x')});
    EXPECT_TRUE(fetch({.url = server_.url("/exact"), .maxBodyBytes = 1000}));
    server_.on("/slow", {.body = "12", .manner = Manner::Drip, .delay = 600ms});
    const HttpResult slow = fetch({.url = server_.url("/slow"), .stallTimeout = 1s});
    ASSERT_TRUE(slow) << describe(slow);
    EXPECT_EQ(slow->body, "12");
}

TEST_F(CurlEndingTest, ReportsARefusedConnection) {
    std::string gone;
    {
        const LoopbackServer closed;
        gone = closed.url("/");
    }
    const HttpResult result = fetch({.url = gone});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind, Kind::Connection);
}

TEST_F(CurlEndingTest, ASlowAnswerHoldsUpNoOther) {
    LoopbackServer secure(LoopbackServer::Transport::Tls);
    setenv("SSL_CERT_FILE", secure.authority().file().c_str(), 1);
    for (LoopbackServer* server : {&server_, &secure}) {
        server->on("/silent", {.manner = Manner::Silent});
        Outcome silent;
        client_->send({.url = server->url("/silent")}, silent.completion());
        EXPECT_TRUE(fetch({.url = server->url("/"), .timeout = 3s})) << server->url("/");
    }
}

TEST_F(CurlEndingTest, CancelEndsACallOnceAndThenDoesNothing) {
    server_.on("/silent", {.manner = Manner::Silent});
    // On a connection that stands already, no timer of curl's wakes the thread by chance.
    ASSERT_TRUE(fetch({.url = server_.url("/")}));
    Outcome outcome;
    const auto call = client_->send({.url = server_.url("/silent")}, outcome.completion());
    ASSERT_TRUE(server_.waitForRequests(2));
    const auto start = Instant::clock::now();
    call->cancel();
    call->cancel();
    const HttpResult result = outcome.wait();
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind, Kind::Cancelled);
    EXPECT_LT(Instant::clock::now() - start, kSoon);

    ASSERT_TRUE(fetch({.url = server_.url("/")})) << "the client goes on";
    client_.reset();
    call->cancel();
    EXPECT_EQ(outcome.count(), 1);
}

TEST_F(CurlEndingTest, DroppingConnectionsEndsWhatIsUnderWayAndBeginsWithNewOnes) {
    server_.on("/silent", {.manner = Manner::Silent});
    ASSERT_TRUE(fetch({.url = server_.url("/")}));
    Outcome silent;
    Outcome other;
    bool isFirst = true;
    auto again = [&, first = silent.completion()](HttpResult result) mutable {
        if (std::exchange(isFirst, false)) {  // asked while connections are being dropped
            client_->send({.url = server_.url("/other")}, other.completion());
        }
        first(std::move(result));
    };
    client_->send({.url = server_.url("/silent")}, std::move(again));
    ASSERT_TRUE(server_.waitForRequests(2));
    client_->dropConnections();
    const HttpResult result = silent.wait();
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind, Kind::Connection);
    EXPECT_TRUE(other.wait());
    EXPECT_NE(server_.requests().back().connection, 1) << "one kept from before";
}

TEST_F(CurlEndingTest, AHungLookUpHoldsUpNothing) {
    HungLookUps hung;
    Outcome timedOut;
    Outcome cancelled;
    Outcome destroyed;
    client_->send({.url = HungLookUps::kUrl, .timeout = 300ms}, timedOut.completion());
    const auto call = client_->send({.url = HungLookUps::kUrl}, cancelled.completion());
    client_->send({.url = HungLookUps::kUrl}, destroyed.completion());
    hung.waitForOne();
    const auto start = Instant::clock::now();
    EXPECT_TRUE(fetch({.url = server_.url("/")}));
    call->cancel();
    EXPECT_EQ(cancelled.wait().error().kind, Kind::Cancelled);
    EXPECT_EQ(timedOut.wait().error().kind, Kind::Timeout);
    client_.reset();
    EXPECT_LT(Instant::clock::now() - start, kSoon);
    EXPECT_EQ(destroyed.count(), 1);
    EXPECT_EQ(destroyed.wait().error().kind, Kind::Cancelled);
}

TEST_F(CurlEndingTest, OneTimeoutSpansRedirectsAndConnectingIsNoStall) {
    HungLookUps hung;
    server_.on("/", {.status = 302, .headers = {{"Location", "/further"}}, .delay = 500ms});
    server_.on("/further", {.status = 302, .headers = {{"Location", HungLookUps::kUrl}}, .delay = 500ms});
    const auto start = Instant::clock::now();
    const HttpResult result = fetch({.url = server_.url("/"), .stallTimeout = 600ms, .timeout = 2000ms});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind, Kind::Timeout) << describe(result);
    EXPECT_GE(Instant::clock::now() - start, 2000ms - kTimerGrain);
    EXPECT_LT(Instant::clock::now() - start, 2900ms) << "a time-out for each hop would take 3 s";
}

TEST_F(CurlEndingTest, DestructionCompletesEachCallAndWhatCompletionsSend) {
    server_.on("/silent", {.manner = Manner::Silent});
    Outcome plain;
    Outcome chained;
    Outcome late;
    CurlHttpClient& ending = *client_;
    ending.send({.url = server_.url("/silent")}, plain.completion());
    ending.send({.url = server_.url("/silent")}, [&, record = chained.completion()](HttpResult result) mutable {
        record(std::move(result));
        ending.send({.url = server_.url("/")}, late.completion());
    });
    ASSERT_TRUE(server_.waitForRequests(2));
    const auto start = Instant::clock::now();
    client_.reset();
    EXPECT_LT(Instant::clock::now() - start, kSoon);
    for (Outcome* outcome : {&plain, &chained, &late}) {
        ASSERT_EQ(outcome->count(), 1);
        EXPECT_EQ(outcome->wait().error().kind, Kind::Cancelled);
    }
}

TEST_F(CurlEndingTest, CompletesEveryOneOfManyCallsOnceWhereverTheirCancellingMeetsThem) {
    server_.on("/", {.body = std::string(2000, 'x')});
    std::vector<Outcome> outcomes(100);
    for (std::size_t index = 0; index < outcomes.size(); ++index) {
        const auto sent = client_->send({.url = server_.url("/")}, outcomes[index].completion());
        if (index % 5 == 0) {
            sent->cancel();
        }
    }
    for (std::size_t index = 0; index < outcomes.size(); ++index) {
        const HttpResult result = outcomes[index].wait();
        EXPECT_TRUE(result || (index % 5 == 0 && result.error().kind == Kind::Cancelled)) << describe(result);
    }
    client_.reset();
    for (Outcome& outcome : outcomes) {
        EXPECT_EQ(outcome.count(), 1);
    }
}

TEST_F(CurlEndingTest, AnExceptionInACompletionHarmsNobody) {
    server_.on("/", {.body = "a"});
    client_->send({.url = server_.url("/")}, [](const HttpResult&) { throw std::runtime_error("a caller's mistake"); });
    EXPECT_TRUE(fetch({.url = server_.url("/")}));
}

}  // namespace
}  // namespace glintar::platform
