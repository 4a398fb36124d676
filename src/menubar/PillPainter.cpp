#include "menubar/PillPainter.h"

#include "menubar/CoinIcons.h"
#include "menubar/CoinPill.h"
#include "menubar/GasPill.h"

#include <fmt/format.h>

#include <utility>

namespace glintar::menubar {

namespace {

/// At one pixel to a point: a whole line of the widest pills that are usual, and some of the last ones.
constexpr double kCacheBytes = 256 * 1024;

platform::ImagePtr fadedIf(bool isOld, const platform::Graphics& graphics, platform::ImagePtr pill, double scale) {
    if (!isOld) {
        return pill;
    }
    const auto size = pill->size();
    return graphics.draw(size, scale, [&](platform::Canvas& canvas) {
        canvas.drawImage(*pill, {0, 0, size.width, size.height}, presenter::kOldOpacity);
    });
}

char letterOf(platform::Appearance appearance) {
    return appearance == platform::Appearance::Dark ? 'D' : 'L';
}

}  // namespace

PillPainter::PillPainter(const platform::Graphics& graphics, std::shared_ptr<CoinIcons> icons, const Look& look,
                         std::function<void()> onIconArrived)
    : graphics_(graphics),
      icons_(std::move(icons)),
      look_(look),
      onIconArrived_(std::move(onIconArrived)),
      renderedItemCache_(static_cast<std::size_t>(kCacheBytes * look.scale * look.scale)) {}

std::string PillPainter::renderKey(const presenter::StatusLine& line, const presenter::CoinPart& coin) const {
    return fmt::format("{}_{}_{}_{}_{}_{}_{}_{}{}", letterOf(look_.appearance), line.sourceId, coin.coin.apiId,
                       coin.price, coin.reference.value_or("n"), line.parts.change24h, line.parts.highLow24h,
                       line.parts.sparkline, coin.quote.arrival.isOld ? "_old" : "");
}

std::string PillPainter::renderKey(const presenter::GasPart& gas) const {
    return fmt::format("gas_{}_{}_{}_{}{}", letterOf(look_.appearance), std::to_underlying(gas.network),
                       std::to_underlying(presenter::gasLevel(gas.fee)), gas.text, gas.arrival.isOld ? "_old" : "");
}

platform::ImagePtr PillPainter::drawPill(const std::string& key, const presenter::CoinPart& coin) {
    const auto icon = icons_->icon(coin.coin.apiId);
    if (!icon && coin.quote.imageUrl) {
        download(key, coin);
    }
    auto pill = fadedIf(coin.quote.arrival.isOld, graphics_, renderCoinPill(graphics_, coin, icon, look_), look_.scale);
    if (icon) {
        renderedItemCache_.insert(key, pill);
    }
    return pill;
}

platform::ImagePtr PillPainter::drawPill(const std::string& key, const presenter::GasPart& gas) {
    auto pill = fadedIf(gas.arrival.isOld, graphics_, renderGasPill(graphics_, gas, look_), look_.scale);
    renderedItemCache_.insert(key, pill);
    return pill;
}

void PillPainter::download(const std::string& key, const presenter::CoinPart& coin) {
    icons_->download(*coin.quote.imageUrl, {.apiId = coin.coin.apiId,
                                            .asker = this,
                                            .quoted = coin.quote.arrival.instant,
                                            .onArrived = [weak = weak_from_this(), key] {
                                                // A painter for another look has asked for itself.
                                                if (const auto self = weak.lock()) {
                                                    self->renderedItemCache_.remove(key);
                                                    self->onIconArrived_();
                                                }
                                            }});
}

}  // namespace glintar::menubar
