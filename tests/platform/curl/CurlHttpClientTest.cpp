#include "platform/curl/CurlFixture.h"

namespace glintar::platform {
namespace {

using support::LoopbackReply;
using support::LoopbackServer;
using testing::ElementsAre;
using testing::IsEmpty;

using CurlHttpClientTest = CurlFixture;

TEST_F(CurlHttpClientTest, DeliversWhateverTheServerAnswers) {
    const std::string text(100'000, 'x');
    struct Row {
        const char* name;
        LoopbackReply reply;
    };
    const Row rows[] = {
        {"Ok", {.body = "hello"}},
        {"NoContent", {.status = 204}},
        {"NotFound", {.status = 404, .body = "no such coin"}},
        {"ServerError", {.status = 500, .body = "sorry"}},
        {"NotModified", {.status = 304}},
        {"RedirectWithoutTarget", {.status = 302, .body = "where to?"}},
        {"CreatedElsewhere", {.status = 201, .headers = {{"Location", "/"}}}},
        {"Large", {.body = text}},
        {"Chunked", {.body = text, .manner = Manner::Chunked}},
        {"Gzip", {.body = text, .gzip = true}},
        {"AnyBytes", {.body = std::string("\0\xff\r\n\0", 5)}},
    };
    for (const Row& row : rows) {
        server_.on("/", row.reply);
        const HttpResult result = fetch({.url = server_.url("/")});
        ASSERT_TRUE(result) << row.name << ": " << describe(result);
        EXPECT_EQ(result->status, row.reply.status) << row.name;
        EXPECT_TRUE(result->body == row.reply.body) << row.name;
    }
}

TEST_F(CurlHttpClientTest, AProxyIsAskedForOtherMachinesOnly) {
    unsetenv("no_proxy");
    setenv("http_proxy", server_.url("").c_str(), 1);
    server_.on("/", {.body = "direct"});
    EXPECT_EQ(fetch({.url = server_.url("/", "localhost")}).value().body, "direct");
    EXPECT_EQ(server_.requests().back().target, "/");
    // A name that nobody can resolve: only a proxy could.
    EXPECT_EQ(fetch({.url = "http://nowhere.invalid/"}).value().status, 404);
    EXPECT_EQ(server_.requests().back().target, "http://nowhere.invalid/");
    unsetenv("http_proxy");
}

TEST_F(CurlHttpClientTest, RefusesAddressesThatAreNotOfTheWeb) {
    for (const std::string& url :
         {std::string("file:///etc/hostname"), std::string("ftp://127.0.0.1/"), std::string("127.0.0.1/"),
          std::string("http://"), std::string(), server_.url("/a b"), server_.url("/a") + std::string("\0b", 2)}) {
        const HttpResult result = fetch({.url = url});
        ASSERT_FALSE(result) << url;
        EXPECT_EQ(result.error().kind, Kind::BadAddress) << url;
        EXPECT_FALSE(result.error().description.empty()) << url;
    }
    EXPECT_THAT(server_.requests(), IsEmpty());
}

TEST_F(CurlHttpClientTest, SendsTheHeadersItWasGivenAndNoOthersOfItsOwn) {
    EXPECT_TRUE(fetch({.url = server_.url("/plain")}));
    EXPECT_TRUE(fetch({.url = server_.url("/full"),
                       .headers = {{"User-Agent", "Mozilla/5.0"}, {"X-Colon", "a: b"}},
                       .originHeaders = {{"x-api-key", "secret"}},
                       .cachePolicy = HttpCachePolicy::Reload}));

    const auto requests = server_.requests();
    ASSERT_EQ(requests.size(), 2);
    EXPECT_THAT(requests[0].values("User-Agent"), IsEmpty());
    EXPECT_THAT(requests[0].values("Cache-Control"), IsEmpty());
    EXPECT_THAT(requests[1].values("User-Agent"), ElementsAre("Mozilla/5.0"));
    EXPECT_THAT(requests[1].values("X-Colon"), ElementsAre("a: b"));
    EXPECT_THAT(requests[1].values("x-api-key"), ElementsAre("secret"));
    EXPECT_THAT(requests[1].values("Cache-Control"), ElementsAre("no-cache"));
    EXPECT_THAT(requests[1].values("Pragma"), ElementsAre("no-cache"));
}

TEST_F(CurlHttpClientTest, LeavesOutHeadersThatCouldBecomeOthers) {
    EXPECT_TRUE(fetch({.url = server_.url("/"),
                       .headers = {{"X-A", "1\r\nInjected: 1"},
                                   {"X-B", "1\nInjected: 1"},
                                   {"X-J", "1\rInjected: 1"},
                                   {"X-C", std::string("1\0 2", 4)},
                                   {"X-D\r\nInjected", "1"},
                                   {"X-E: 1\r\nInjected", "1"},
                                   {"X F", "1"},
                                   {"X-G:", "1"},
                                   {"", "1"}},
                       .originHeaders = {{"X-H", "1\r\nInjected: 1"}, {"X-I", "fine"}}}));

    const auto requests = server_.requests();
    ASSERT_EQ(requests.size(), 1);
    std::vector<std::string> names;
    for (const auto& [name, value] : requests[0].headers) {
        names.push_back(name);
    }
    EXPECT_THAT(names, ElementsAre("Accept", "Accept-Encoding", "Host", "X-I"));
}

TEST_F(CurlHttpClientTest, HeadAsksForTheHeadAlone) {
    // The answer names a length beyond the bound, of a body that never comes.
    server_.on("/", {.body = std::string(5000, 'x')});
    const HttpResult head = fetch({.url = server_.url("/"), .method = HttpMethod::Head, .maxBodyBytes = 1000});
    ASSERT_TRUE(head) << describe(head);
    EXPECT_EQ(head->status, 200);
    EXPECT_EQ(head->body, "");
    ASSERT_TRUE(fetch({.url = server_.url("/")}));
    EXPECT_EQ(server_.requests().at(0).method, "HEAD");
    EXPECT_EQ(server_.requests().at(1).method, "GET") << "the handle must not stay with HEAD";
}

TEST_F(CurlHttpClientTest, FollowsFiveRedirectsAndNotSix) {
    for (int step = 1; step <= 6; ++step) {
        server_.on("/" + std::string(step, 'r'),
                   {.status = 302, .headers = {{"Location", "/" + std::string(step - 1, 'r')}}, .body = "not this"});
    }
    server_.on("/", {.body = "there"});

    const HttpResult five = fetch({.url = server_.url("/rrrrr")});
    ASSERT_TRUE(five) << describe(five);
    EXPECT_EQ(five->body, "there");
    const HttpResult six = fetch({.url = server_.url("/rrrrrr")});
    ASSERT_FALSE(six);
    EXPECT_EQ(six.error().kind, Kind::Redirect);
}

TEST_F(CurlHttpClientTest, RedirectsLeadToTheWebOnly) {
    struct Row {
        std::string location;
        bool followed;
    };
    for (const Row& row : {Row{"file:///etc/hostname", false}, Row{"ftp://127.0.0.1/", false}, Row{"http://", false},
                           Row{"target", true}, Row{server_.url("/a blank \xc3\xbc"), true}}) {
        server_.on("/from", {.status = 301, .headers = {{"Location", row.location}}});
        const HttpResult result = fetch({.url = server_.url("/from")});
        EXPECT_EQ(result.has_value(), row.followed) << row.location;
        EXPECT_EQ(!result && result.error().kind == Kind::Redirect, !row.followed) << row.location;
    }
    EXPECT_EQ(server_.requests().back().target, "/a%20blank%20%c3%bc");
}

TEST_F(CurlHttpClientTest, KeepsTheKeyHeaderFromOtherOrigins) {
    LoopbackServer other;
    struct Row {
        const char* name;
        std::string location;
        bool keyArrives;
    };
    const Row rows[] = {
        {"SameOrigin", server_.url("/to"), true},
        {"SameOriginRelative", "/to", true},
        {"OtherPort", other.url("/to"), false},
        {"OtherHost", server_.url("/to", "localhost"), false},
    };
    for (const Row& row : rows) {
        server_.on("/from", {.status = 307, .headers = {{"Location", row.location}}});
        EXPECT_TRUE(fetch(
            {.url = server_.url("/from"), .headers = {{"X-Plain", "p"}}, .originHeaders = {{"x-api-key", "secret"}}}));
        const auto& arrivedAt = row.location.starts_with(other.url("")) ? other : server_;
        const support::LoopbackRequest last = arrivedAt.requests().back();
        ASSERT_EQ(last.target, "/to") << row.name;
        EXPECT_EQ(last.values("x-api-key").size(), row.keyArrives ? 1 : 0) << row.name;
        EXPECT_THAT(last.values("X-Plain"), ElementsAre("p")) << row.name;
    }
}

TEST_F(CurlHttpClientTest, KeepsItsConnectionAndGetsOverItsLoss) {
    server_.on("/", {.body = "a"});
    server_.on("/last", {.body = "b", .close = true});
    for (const char* path : {"/", "/", "/last", "/", "/"}) {
        ASSERT_TRUE(fetch({.url = server_.url(path)})) << path;
    }
    std::vector<int> connections;
    for (const auto& request : server_.requests()) {
        connections.push_back(request.connection);
    }
    EXPECT_THAT(connections, ElementsAre(1, 1, 1, 2, 2));
}

TEST_F(CurlHttpClientTest, TrustsTheAuthoritiesOfTheEnvironmentAndNoOthers) {
    LoopbackServer secure(LoopbackServer::Transport::Tls);
    const std::string file = secure.authority().file();
    const std::string directory = secure.authority().directory();
    struct Row {
        const char* name;
        std::string file;
        std::string directory;
        bool trusted;
    };
    for (const Row& row :
         {Row{"Neither", "", "", false}, Row{"File", file, "", true},
          Row{"FileWithoutAnyDirectory", file, "/nonexistent", true}, Row{"Directory", "", directory, true},
          Row{"DirectoryAmongSeveral", "", "/nonexistent:" + directory, true},
          Row{"DirectoryAfterAMissingFile", "/nonexistent/authority.pem", directory, true}}) {
        setenv("SSL_CERT_FILE", row.file.c_str(), 1);
        setenv("SSL_CERT_DIR", row.directory.c_str(), 1);
        client_ = std::make_unique<CurlHttpClient>();
        const HttpResult result = fetch({.url = secure.url("/")});
        EXPECT_EQ(result.has_value(), row.trusted) << row.name << ": " << describe(result);
        EXPECT_EQ(!result && result.error().kind == Kind::Tls, !row.trusted) << row.name << ": " << describe(result);
    }

    // From a server that the second store vouches for to one that only the first does.
    LoopbackServer other(LoopbackServer::Transport::Tls);
    other.on("/", {.status = 302, .headers = {{"Location", secure.url("/")}}});
    setenv("SSL_CERT_FILE", file.c_str(), 1);
    setenv("SSL_CERT_DIR", other.authority().directory().c_str(), 1);
    client_ = std::make_unique<CurlHttpClient>();
    EXPECT_TRUE(fetch({.url = other.url("/")}));
}

TEST_F(CurlHttpClientTest, NeverLeavesTlsAndKeepsTheKeyFromPlainOrigins) {
    LoopbackServer secure(LoopbackServer::Transport::Tls);
    setenv("SSL_CERT_FILE", secure.authority().file().c_str(), 1);
    server_.on("/up", {.status = 302, .headers = {{"Location", secure.url("/down")}}});
    secure.on("/down", {.status = 302, .headers = {{"Location", server_.url("/stolen")}}});

    const HttpResult result = fetch({.url = server_.url("/up"), .originHeaders = {{"x-api-key", "secret"}}});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind, Kind::Redirect) << describe(result);
    EXPECT_EQ(server_.requests().size(), 1);
    ASSERT_EQ(secure.requests().size(), 1);
    EXPECT_THAT(secure.requests()[0].values("x-api-key"), IsEmpty());
}

}  // namespace
}  // namespace glintar::platform
