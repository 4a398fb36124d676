// CryptoService: the current fee of a network.

#include "config/Settings.h"
#include "market/CryptoService.h"
#include "market/GasNetwork.h"
#include "market/ValuePath.h"
#include "platform/Console.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "text/Address.h"
#include "text/Number.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace glintar::market {

namespace {

constexpr std::size_t kShownCharacters = 200;

const config::GasConfig& choose(const std::vector<config::GasConfig>& configs, GasNetwork network) {
    static constexpr std::array<std::string_view, 3> kBitcoin{"btc", "bitcoin", "mempool"};
    static constexpr std::array<std::string_view, 3> kEthereum{"eth", "etherscan", "gas"};
    const auto& words = network == GasNetwork::Bitcoin ? kBitcoin : kEthereum;
    const auto chosen = std::ranges::find_if(configs, [&](const config::GasConfig& candidate) {
        const auto id = text::lower(candidate.id);
        return std::ranges::any_of(words, [&](std::string_view word) { return id.contains(word); });
    });
    return chosen == configs.end() ? configs.front() : *chosen;
}

/// Reads the fee out of the answer, saying on the console what came and what went wrong.
std::optional<double> readFee(platform::Console& console, const config::GasConfig& gas, platform::HttpResult result) {
    if (!result) {
        console.print("❌ [Gas Debug] 网络请求错误: " + result.error().description);
        return std::nullopt;
    }
    if (result->status != 0) {
        console.print(fmt::format("📡 [Gas Debug] HTTP Status Code: {}", result->status));
    }
    if (result->status == 429) {
        console.print("🛑 [Gas Debug] 请求过于频繁 (Too Many Requests)，请增加刷新间隔！");
    }
    const auto& body = result->body;
    if (body.empty()) {
        console.print("❌ [Gas Debug] 数据为空");
        return std::nullopt;
    }
    const bool isText = text::isValidUtf8(body);
    if (isText) {
        const auto shown = text::firstCharacters(body, kShownCharacters);
        console.print(fmt::format("📄 [Gas Debug] Raw Response Body: {}{}", shown, shown == body ? "" : "..."));
    }
    const auto document = json::parseContainer(body);
    if (!document) {
        if (isText) {
            console.print("🔍 [Gas Debug] 服务器返回的真实内容是：\n" +
                          std::string(text::firstCharacters(body, platform::Console::kLongestQuotation)));
        }
        console.print("❌ [Gas Debug] JSON 解析彻底崩溃 (可能是返回了 HTML): " + document.error().text());
        return std::nullopt;
    }
    if (!document->root().isObject()) {
        console.print("❌ [Gas Debug] JSON 格式不对 (不是 Dictionary)");
        return std::nullopt;
    }
    const auto value = valueAtPath(gas.pricePath, document->root());
    const auto raw = value ? value->number() : std::nullopt;
    const double fee = raw.value_or(std::numeric_limits<double>::quiet_NaN()) / (gas.divider > 0 ? gas.divider : 1.0);
    if (!std::isfinite(fee)) {
        console.print(
            fmt::format("❌ [Gas Debug] 解析失败：无法在路径 '{}' 找到 Double 值", text::oneLine(gas.pricePath)));
        return std::nullopt;
    }
    console.print(
        fmt::format("✅ [Gas Debug] 成功! 原始值: {} -> 最终值: {}", text::decimal(*raw), text::decimal(fee)));
    return fee;
}

}  // namespace

void CryptoService::fetchGasPrice(FeeCompletion completion) {
    auto& console = platform_.console;
    const auto gasSource = config::Settings::load(platform_.preferences).gasSource;
    const auto config = loadedConfig_;
    if (!config || !config->gasConfigs || config->gasConfigs->empty()) {
        console.debug("❌ [Gas Debug] 失败：loadedConfig.gasConfigs 为空或 nil。请检查 api_endpoints.json");
        completion(std::nullopt);
        return;
    }
    console.debug(fmt::format("🔍 [Gas Debug] 正在查找 Gas 配置 (SourceIndex: {})...", gasSource));
    const std::shared_ptr<const config::GasConfig> gas(config, &choose(*config->gasConfigs, gasNetworkOf(gasSource)));
    auto address = text::webAddress(gas->url);
    if (!address) {
        console.debug("❌ [Gas Debug] 失败：URL 无效 -> " + text::oneLine(gas->url));
        completion(std::nullopt);
        return;
    }
    console.debug("🚀 [Gas Debug] 发起请求: " + *address);
    console.debug("  [Gas Debug] - Price Path: " + text::oneLine(gas->pricePath));
    console.debug("  [Gas Debug] - Divider: " + text::decimal(gas->divider));
    platform_.http.send({.url = *std::move(address)},
                        [gas, &console, completion = std::move(completion)](platform::HttpResult result) mutable {
                            std::optional<double> fee;
                            try {
                                fee = readFee(console, *gas, std::move(result));
                            } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): no memory, so no fee
                            }
                            completion(fee);
                        });
}

}  // namespace glintar::market
