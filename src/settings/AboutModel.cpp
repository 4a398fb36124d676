#include "settings/AboutModel.h"

#include "config/ConfigFiles.h"
#include "platform/Console.h"
#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/Workspace.h"

#include <optional>
#include <utility>

namespace glintar::settings {

AboutModel::AboutModel(platform::Platform& platform, platform::Workspace& workspace, Contacts contacts,
                       std::function<void()> terminate)
    : platform_(platform), workspace_(workspace), contacts_(std::move(contacts)), terminate_(std::move(terminate)) {}

std::string AboutModel::versionText() const {
    const auto version = platform_.bundle.version();
    return "Version " + (version.empty() ? "1.0.0" : version);
}

void AboutModel::open(const std::string& address) {
    workspace_.open(address);
}

void AboutModel::cleanCacheAndRestart() {
    auto& console = platform_.console;
    console.debug("🧹 [Reset] 开始清理缓存...");
    const auto caches = platform_.directories.caches();
    const auto icons = caches ? std::optional(*caches / "CoinIcons") : std::nullopt;
    for (const auto& [path, done] : {std::pair(config::cachedConfigFileURL(platform_), "   - 已删除: API 配置文件"),
                                     std::pair(config::cachedCoinListFile(platform_), "   - 已删除: 币种列表文件"),
                                     std::pair(icons, "   - 已删除: 图标缓存目录")}) {
        if (path && platform_.files.exists(*path) && platform_.files.removeAll(*path)) {
            console.debug(done);
        }
    }
    for (const auto* key : {"saved_api_config_version", "coin_list_version"}) {
        platform_.preferences.setInteger(key, 0);
    }
    console.debug("   - 已重置: 本地版本号记录");
    console.debug("🚀 [System] 正在重启应用...");
    workspace_.relaunch(terminate_);
}

void AboutModel::sendEmail() {
    platform_.console.log({"📧 打开邮件客户端..."});
    workspace_.compose(
        {.recipient = contacts_.support, .subject = "Glintar Feedback", .body = "Hi dev,\n\nI have some feedback..."});
}

}  // namespace glintar::settings
