#include "market/CryptoService.h"

#include "config/APIConfigUpdater.h"
#include "config/AppConfig.h"
#include "config/ConfigFiles.h"
#include "platform/Console.h"
#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Registry.h"

namespace glintar::market {

CryptoService& CryptoService::shared(platform::Platform& platform) {
    return platform.registry.shared<CryptoService>([&] {
        auto service = std::make_shared<CryptoService>(platform);
        config::APIConfigUpdater::shared(platform).checkForNewVersion();
        return service;
    });
}

CryptoService::CryptoService(platform::Platform& platform) : platform_(platform), sourceCoolDowns_(platform.runLoop) {
    loadConfig();
    configUpdated_ = platform.notifications.observe(config::kConfigUpdated, [this] { handleConfigUpdated(); });
}

void CryptoService::handleConfigUpdated() {
    platform_.console.log({"🔄 [CryptoService] 收到更新通知，重新加载配置..."});
    loadConfig();
}

void CryptoService::loadConfig() {
    if (const auto cached = config::cachedConfigFileURL(platform_)) {
        if (auto text = platform_.files.read(*cached)) {
            if (auto decoded = config::decodeAppConfig(*std::move(text))) {
                loadedConfig_ = std::make_shared<const config::AppConfig>(*std::move(decoded));
                platform_.console.log({"📁 [Config] 成功从磁盘缓存加载远程配置"});
                return;
            } else {
                platform_.console.log({"⚠️ [Config]", cached->string(), decoded.error()});
            }
        }
    }
    const auto shipped = platform_.bundle.resource("api_endpoints", "json");
    auto text = shipped ? platform_.files.read(*shipped) : std::unexpected(std::string());
    if (!text) {
        platform_.console.log({"❌ [Config] 内部配置文件也找不到"});
        return;
    }
    auto decoded = config::decodeAppConfig(*std::move(text));
    if (!decoded) {
        platform_.console.log({"⚠️ [Config]", shipped->string(), decoded.error()});
    }
    loadedConfig_ = decoded ? std::make_shared<const config::AppConfig>(*std::move(decoded)) : nullptr;
    platform_.console.log({"📦 [Config] 首次启动，加载内部初始配置"});
}

}  // namespace glintar::market
