#include "demo/MarketServer.h"

#include "demo/CoinPicture.h"
#include "demo/Market.h"
#include "demo/MarketAnswers.h"
#include "json/JsonWriter.h"
#include "text/Number.h"

#include <fmt/format.h>
#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace glintar::demo {

namespace {

using namespace std::chrono_literals;

constexpr auto kJson = "application/json; charset=utf-8";
constexpr std::size_t kConnections = 64;  // each keeps its thread, so that one which hangs holds up no other
constexpr std::size_t kLogLines = 10'000;

std::string message(std::string_view text) {
    json::Writer writer;
    writer.beginObject().key("error").string(text).endObject();
    return std::string(writer.text());
}

/// The good answer with one member more, whose value is no UTF-8.
std::string withBadUtf8(std::string body) {
    const auto object = body.find('{');
    return object == std::string::npos ? "\"\xff\"" : body.insert(object + 1, "\"note\":\"\xff\",");
}

void sendHalf(httplib::Response& response, const std::string& body) {
    response.set_content_provider(body.size(), kJson, [body](std::size_t offset, std::size_t, httplib::DataSink& sink) {
        if (offset == 0) {
            sink.write(body.data(), body.size() / 2);
            return true;
        }
        return false;
    });
}

void sendHuge(httplib::Response& response) {
    constexpr std::size_t kHuge = 100'000'000;
    response.set_chunked_content_provider(kJson, [](std::size_t offset, httplib::DataSink& sink) {
        const std::string blanks(100'000, ' ');
        if (offset == 0) {
            sink.write("[", 1);
        }
        if (offset < kHuge) {
            return sink.write(blanks.data(), blanks.size());
        }
        sink.write("]", 1);
        sink.done();
        return true;
    });
}

}  // namespace

struct MarketServer::Parts {
    explicit Parts(std::chrono::milliseconds minute) : step(minute) {}

    void handle(const httplib::Request& request, httplib::Response& response);
    void handleControl(const httplib::Request& request, httplib::Response& response);
    void answer(const std::string& kind, const Answer& good, httplib::Response& response);
    void log(const httplib::Request& request);

    const std::chrono::milliseconds step;
    const Market market{1};
    std::string address;
    std::optional<MarketAnswers> answers;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();

    std::mutex mutex;
    std::condition_variable stopped;
    bool isStopping = false;
    std::deque<std::string> lines;
    std::string fault;

    httplib::Server server;
    std::atomic<bool> hasEnded{false};
    std::jthread thread;  // last member: uses all others
};

void MarketServer::Parts::log(const httplib::Request& request) {
    std::string line = request.method == "HEAD" ? "HEAD " + request.target : request.target;
    if (const auto key = request.get_header_value("x-cg-demo-api-key"); !key.empty()) {
        line += ' ' + key;
    }
    const std::scoped_lock lock(mutex);
    lines.push_back(std::move(line));
    if (lines.size() > kLogLines) {
        lines.pop_front();
    }
}

void MarketServer::Parts::handle(const httplib::Request& request, httplib::Response& response) {
    const std::string_view path = request.path;
    if (path.starts_with("/control/")) {
        return handleControl(request, response);
    }
    log(request);
    if (path.starts_with(MarketAnswers::kImagePath)) {
        const auto name = path.substr(MarketAnswers::kImagePath.size());
        return response.set_content(coinPicture(name.substr(0, name.find('/'))), "image/png");
    }
    const auto slash = std::min(path.find('/', 1), path.size());
    Question question{.service = std::string(path.substr(std::min<std::size_t>(1, slash), slash - 1)),
                      .path = std::string(path.substr(slash)),
                      .parameters = {}};
    question.parameters.insert(request.params.begin(), request.params.end());
    const auto kind = [this] {
        const std::scoped_lock lock(mutex);
        return fault;
    }();
    const auto now = static_cast<Step>((std::chrono::steady_clock::now() - start) / step);
    answer(kind, answers->answer(question, now, std::chrono::system_clock::now()), response);
}

void MarketServer::Parts::answer(const std::string& kind, const Answer& good, httplib::Response& response) {
    response.status = good.status;
    if (kind == "hang") {
        std::unique_lock lock(mutex);
        stopped.wait(lock, [this] { return isStopping; });
    } else if (kind == "truncated") {
        sendHalf(response, good.body);
    } else if (kind == "html") {
        response.set_content("<!DOCTYPE html>\n<title>Checking your browser</title><p>One moment, please.\n",
                             "text/html; charset=utf-8");
    } else if (kind == "wrong") {
        response.set_content(R"({"ok":true,"result":[{"quote":{"value":"1"}}]})", kJson);
    } else if (kind == "huge") {
        sendHuge(response);
    } else if (kind == "deep") {
        response.set_content(std::string(100'000, '['), kJson);
    } else if (kind == "badutf8") {
        response.set_content(withBadUtf8(good.body), kJson);
    } else if (const auto status = text::parseDecimal(kind)) {
        response.status = static_cast<int>(*status);
        response.set_content(message(fmt::format("Refused with status {}", response.status)), kJson);
    } else {
        response.set_content(good.body, kJson);
    }
}

void MarketServer::Parts::handleControl(const httplib::Request& request, httplib::Response& response) {
    response.status = 200;
    const std::scoped_lock lock(mutex);
    if (request.path == "/control/log") {
        return response.set_content(lines.empty() ? "" : fmt::format("{}\n", fmt::join(lines, "\n")), "text/plain");
    }
    fault = request.get_param_value("kind");
    response.set_content("{}", kJson);
}

std::expected<std::unique_ptr<MarketServer>, std::string> MarketServer::start(std::chrono::milliseconds step) {
    auto parts = std::make_unique<Parts>(step);
    httplib::Server& server = parts->server;
    server.new_task_queue = [] { return new httplib::ThreadPool(kConnections); };
    server.set_tcp_nodelay(true);
    server.set_keep_alive_max_count(100'000);
    int listening = -1;
    server.set_socket_options([&listening](int socket) { listening = socket; });
    server.set_pre_routing_handler([&all = *parts](const httplib::Request& request, httplib::Response& response) {
        all.handle(request, response);
        return httplib::Server::HandlerResponse::Handled;
    });
    const int port = server.bind_to_any_port("127.0.0.1");
    if (port < 0) {
        return std::unexpected("cannot listen on 127.0.0.1");
    }
    // The library's own queue of five is full at once when all services are asked together; whoever finds it full comes
    // again a second later.
    ::listen(listening, SOMAXCONN);
    server.set_socket_options(nullptr);
    parts->address = fmt::format("http://127.0.0.1:{}", port);
    parts->answers.emplace(parts->market, parts->address);
    parts->thread = std::jthread([&all = *parts] {
        all.server.listen_after_bind();
        all.hasEnded = true;
    });
    return std::unique_ptr<MarketServer>(new MarketServer(std::move(parts)));
}

MarketServer::MarketServer(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

MarketServer::~MarketServer() {
    {
        const std::scoped_lock lock(parts_->mutex);
        parts_->isStopping = true;
    }
    parts_->stopped.notify_all();
    // stop() does nothing to a server that has not begun.
    while (!parts_->server.is_running() && !parts_->hasEnded) {
        std::this_thread::sleep_for(1ms);
    }
    parts_->server.stop();
}

const std::string& MarketServer::address() const {
    return parts_->address;
}

}  // namespace glintar::demo
