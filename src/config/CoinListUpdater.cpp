#include "config/CoinListUpdater.h"

#include "config/CoinCatalogue.h"
#include "config/ConfigFiles.h"
#include "platform/Platform.h"
#include "platform/Registry.h"

namespace glintar::config {

namespace {

std::optional<std::string> flawOf(std::string body) {
    const auto catalogue = CoinCatalogue::decode(std::move(body));
    if (!catalogue) {
        return catalogue.error();
    }
    return catalogue->empty() ? std::optional<std::string>("no coins") : std::nullopt;
}

constexpr RemoteResource kResource{
    .name = kCoinListName,
    .versionKey = CoinListUpdater::kVersionKey,
    .notification = kCoinListUpdated,
    .storedAt = cachedCoinListFile,
    .flaw = flawOf,
    .mark = "🔍",
    .tag = "CoinList",
    .noun = "列表",
    .started = "🔍 [CoinList] 检查列表更新...",
    .stored = "✅ [CoinList] 列表更新完成并保存。",
};

}  // namespace

CoinListUpdater& CoinListUpdater::shared(platform::Platform& platform) {
    return platform.registry.shared<CoinListUpdater>([&] { return std::make_shared<CoinListUpdater>(platform); });
}

CoinListUpdater::CoinListUpdater(platform::Platform& platform) : RemoteResourceUpdater(platform, kResource) {}

}  // namespace glintar::config
