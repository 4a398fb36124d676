#include "config/CoinListUpdater.h"

#include "config/CoinCatalogue.h"
#include "config/ConfigFiles.h"
#include "platform/Platform.h"
#include "platform/Registry.h"

namespace glintar::config {

namespace {

std::expected<void, std::string> check(std::string body) {
    const auto catalogue = CoinCatalogue::decode(std::move(body));
    if (!catalogue) {
        return std::unexpected(catalogue.error());
    }
    return catalogue->empty() ? std::unexpected("no coins") : std::expected<void, std::string>();
}

constexpr RemoteResource kResource{
    .verUrl = "/api/coingecko_coins_list_ver.json",
    .dataUrl = "/api/coingecko_coins_list.json",
    .versionKey = CoinListUpdater::kVersionKey,
    .notification = kCoinListUpdated,
    .storedAt = cachedCoinListFile,
    .check = check,
    .canBeUsed = [](std::string stored) { return check(std::move(stored)).has_value(); },
    .lines = {.started = "🔍 [CoinList] 检查列表更新...",
              .versionCheckFailed = "⚠️ [CoinList] 版本检查失败: {}",
              .compared = "🔍 [CoinList] 版本对比: 本地 v{} vs 远程 v{}",
              .newerFound = "🚀 [CoinList] 发现新列表 v{}，开始下载...",
              .upToDate = "✅ [CoinList] 列表已是最新。",
              .downloadFailed = "❌ [CoinList] 下载或保存失败: {}",
              .stored = "✅ [CoinList] 列表更新完成并保存。"},
};

}  // namespace

CoinListUpdater& CoinListUpdater::shared(platform::Platform& platform) {
    return platform.registry.shared<CoinListUpdater>([&] { return std::make_shared<CoinListUpdater>(platform); });
}

CoinListUpdater::CoinListUpdater(platform::Platform& platform) : RemoteResourceUpdater(platform, kResource) {}

}  // namespace glintar::config
