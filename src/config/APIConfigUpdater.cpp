#include "config/APIConfigUpdater.h"

#include "config/ConfigFiles.h"
#include "json/Json.h"
#include "platform/Platform.h"
#include "platform/Registry.h"

namespace glintar::config {

namespace {

std::optional<std::string> flawOf(std::string body) {
    const auto document = json::parseContainer(std::move(body));
    return document ? std::nullopt : std::optional(document.error().text());
}

constexpr RemoteResource kResource{
    .name = "api_endpoints",
    .versionKey = APIConfigUpdater::kVersionKey,
    .notification = kConfigUpdated,
    .storedAt = cachedConfigFileURL,
    .flaw = flawOf,
    .mark = "☁️",
    .tag = "APIConfig",
    .noun = "配置",
    .started = "☁️ [APIConfig] 开始检查配置更新...",
    .stored = "💾 [APIConfig] 新配置已写入磁盘。",
};

}  // namespace

APIConfigUpdater& APIConfigUpdater::shared(platform::Platform& platform) {
    return platform.registry.shared<APIConfigUpdater>([&] { return std::make_shared<APIConfigUpdater>(platform); });
}

APIConfigUpdater::APIConfigUpdater(platform::Platform& platform) : RemoteResourceUpdater(platform, kResource) {}

}  // namespace glintar::config
