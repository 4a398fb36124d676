#include "config/APIConfigUpdater.h"

#include "config/AppConfig.h"
#include "config/ConfigFiles.h"
#include "json/Json.h"
#include "platform/Platform.h"
#include "platform/Registry.h"

namespace glintar::config {

namespace {

std::expected<void, std::string> check(std::string body) {
    const auto document = json::parseContainer(std::move(body));
    return document ? std::expected<void, std::string>() : std::unexpected(document.error().text());
}

constexpr RemoteResource kResource{
    .verUrl = "/api/api_endpoints_ver.json",
    .dataUrl = "/api/api_endpoints.json",
    .versionKey = APIConfigUpdater::kVersionKey,
    .notification = kConfigUpdated,
    .storedAt = cachedConfigFileURL,
    .check = check,
    .canBeUsed = [](std::string stored) { return decodeAppConfig(std::move(stored)).has_value(); },
    .lines = {.started = "☁️ [APIConfig] 开始检查配置更新...",
              .versionCheckFailed = "⚠️ [APIConfig] 版本检查失败: {}",
              .compared = "☁️ [APIConfig] 版本对比: 本地 v{} vs 远程 v{}",
              .newerFound = "🚀 [APIConfig] 发现新配置 v{}，开始下载...",
              .upToDate = "✅ [APIConfig] 配置已是最新。",
              .downloadFailed = "❌ [APIConfig] 下载或保存失败: {}",
              .stored = "💾 [APIConfig] 新配置已写入磁盘。"},
};

}  // namespace

APIConfigUpdater& APIConfigUpdater::shared(platform::Platform& platform) {
    return platform.registry.shared<APIConfigUpdater>([&] { return std::make_shared<APIConfigUpdater>(platform); });
}

APIConfigUpdater::APIConfigUpdater(platform::Platform& platform) : RemoteResourceUpdater(platform, kResource) {}

}  // namespace glintar::config
