// StatusBarController: what is known, on its way to the line or the panel.

#include "config/Settings.h"
#include "market/CryptoService.h"
#include "platform/Machine.h"
#include "platform/Platform.h"
#include "presenter/RefreshState.h"
#include "presenter/StatusBarController.h"
#include "presenter/StatusSurface.h"

#include <algorithm>

namespace glintar::presenter {

void StatusBarController::renderStatusItem() {
    const auto line =
        composeStatusLine(config::Settings::load(platform_.preferences), config::loadSavedCoins(platform_),
                          cachedMarketData_.value_or(market::MarketDataMap{}), currentGasPrice_, outcome_);
    surface_.showLine(line, line.isEmpty() ? std::nullopt : std::optional(toolTip(line)));
    if (timer_ && !progressTimer_) {
        onProgress();
    }
}

std::string StatusBarController::toolTip(const StatusLine& line) const {
    if (!outcome_) {
        return "Waiting for data...";
    }
    std::string text = outcomeText_;
    if (line.hasOld()) {
        const auto& local = platform_.localTime;
        text +=
            '\n' + oldPricesText(local.timestamp(line.oldest()->time), local.timestamp(platform_.runLoop.wallNow()));
    }
    if (!line.lacking.empty()) {
        const auto& config = market::CryptoService::shared(platform_).loadedConfig();
        const auto* source = config ? config->source(line.sourceId) : nullptr;
        text += '\n' + lackingText(source ? source->name : line.sourceId, line.lacking);
    }
    return text;
}

void StatusBarController::updatePanel() {
    auto coins = outcome_ ? config::loadSavedCoins(platform_) : std::vector<config::Coin>{};
    coins.resize(std::min(coins.size(), kShownCoins));
    surface_.updatePanel({.coins = std::move(coins),
                          .quotes = cachedMarketData_.value_or(market::MarketDataMap{}),
                          .gasPrice = currentGasPrice_,
                          .nextFetchTime = state_.nextFetchTime});
}

void StatusBarController::redisplayFromCache() {
    if (hasShown_) {
        showAll();
    }
}

void StatusBarController::showAll() {
    hasShown_ = true;
    currentDisplayMode_ == DisplayMode::Line ? renderStatusItem() : updatePanel();
}

}  // namespace glintar::presenter
