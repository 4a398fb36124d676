#include "diagnostics/NetworkDiagnosticManager.h"

#include "config/Coin.h"
#include "json/Json.h"
#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/HttpClient.h"
#include "platform/Platform.h"
#include "platform/RunLoop.h"
#include "text/Address.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace glintar::diagnostics {

namespace {

using namespace std::chrono_literals;

constexpr auto kTimeout = 5s;

/// One node for each element that has both texts; none at all when the list holds anything but objects.
void addNodes(std::vector<DiagnosticNode>& nodes, std::optional<json::View> list, std::string_view addressKey,
              platform::Entropy& entropy) {
    for (std::size_t i = 0; list && i < list->size(); ++i) {
        if (!list->at(i).isObject()) {
            return;
        }
    }
    for (std::size_t i = 0; list && i < list->size(); ++i) {
        const auto name = list->at(i).member("name");
        const auto address = list->at(i).member(addressKey);
        if (name && name->string() && address && address->string()) {
            nodes.push_back({.id = config::randomUuid(entropy),
                             .name = std::string(*name->string()) + " API",
                             .url = std::string(*address->string()),
                             .status = {}});
        }
    }
}

std::vector<DiagnosticNode> shippedNodes(platform::Platform& platform) {
    std::vector<DiagnosticNode> nodes;
    const auto file = platform.bundle.resource("api_endpoints", "json");
    auto text = file ? platform.files.read(*file) : std::unexpected(std::string());
    const auto document = text ? json::Document::parse(*std::move(text)) : std::unexpected(json::ParseError());
    if (!document) {
        return nodes;
    }
    addNodes(nodes, document->root().member("sources"), "url_template", platform.entropy);
    for (auto& node : nodes) {
        node.url = text::replaceAll(text::replaceAll(node.url, "{SYMBOL}", "BTC"), "{ID}", "bitcoin");
    }
    addNodes(nodes, document->root().member("gas_configs"), "url", platform.entropy);
    std::ranges::stable_sort(nodes, {}, &DiagnosticNode::name);
    return nodes;
}

}  // namespace

NetworkDiagnosticManager::NetworkDiagnosticManager(platform::Platform& platform)
    : nodes(shippedNodes(platform)), platform_(platform) {}

NetworkDiagnosticManager::~NetworkDiagnosticManager() {
    if (call_) {
        call_->cancel();
    }
}

void NetworkDiagnosticManager::runAllTests() {
    if (isTesting) {
        return;
    }
    isTesting = true;
    for (auto& node : nodes) {
        node.status = {};
    }
    testNext(0);
}

void NetworkDiagnosticManager::testNext(std::size_t index) {
    if (index == nodes.size()) {
        isTesting = false;
        changed();
        return;
    }
    nodes[index].status = {.kind = NodeStatus::Kind::testing};
    testNode(nodes[index].url, [this, index](Outcome latency) {
        nodes[index].status =
            latency ? NodeStatus{NodeStatus::Kind::success, *latency} : NodeStatus{.kind = NodeStatus::Kind::error};
        testNext(index + 1);
    });
    changed();
}

void NetworkDiagnosticManager::testNode(const std::string& address, std::function<void(Outcome)> onTested) {
    auto& loop = platform_.runLoop;
    auto tell = lifetime_.guard(std::move(onTested));
    auto valid = text::webAddress(address);
    if (!valid) {
        loop.post([tell = std::move(tell)]() mutable { tell(std::nullopt); });
        return;
    }
    call_ = platform_.http.send(
        {.url = *std::move(valid),
         .method = platform::HttpMethod::Head,
         .stallTimeout = kTimeout,
         .timeout = kTimeout,
         .cachePolicy = platform::HttpCachePolicy::Reload},
        [&loop, sent = loop.now(), tell = std::move(tell)](const platform::HttpResult& result) mutable {
            Outcome latency;
            if (result && result->status > 0) {
                latency = std::chrono::floor<std::chrono::milliseconds>(loop.now() - sent);
            }
            loop.post([latency, tell = std::move(tell)]() mutable { tell(latency); });
        });
}

std::string NetworkDiagnosticManager::report() const {
    std::string text = fmt::format("Glintar {}\n", platform_.bundle.version());
    for (const auto& node : nodes) {
        text += rowText(node, nodes) + '\n';
    }
    return text;
}

void NetworkDiagnosticManager::changed() {
    if (const auto told = onChange) {
        told();
    }
}

std::string stateText(const NodeStatus& status) {
    switch (status.kind) {
        case NodeStatus::Kind::success:
            return fmt::format("{}ms", status.latency.count());
        case NodeStatus::Kind::idle:
            return "-";
        case NodeStatus::Kind::testing:
            return "testing";
        case NodeStatus::Kind::error:
            return "Failed";
    }
    return {};
}

std::string rowText(const DiagnosticNode& node, const std::vector<DiagnosticNode>& nodes) {
    const auto width = [](const DiagnosticNode& it) { return text::columnCount(text::oneLine(it.name)); };
    const auto longest = width(*std::ranges::max_element(nodes, {}, width));
    return fmt::format("{}{:{}}  {:>6}", text::oneLine(node.name), "", longest - width(node), stateText(node.status));
}

}  // namespace glintar::diagnostics
