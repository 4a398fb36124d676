#include "arbiter/ArbiterColumnView.h"

#include "presenter/StatusTexts.h"
#include "text/Number.h"
#include "text/Unicode.h"

#include <algorithm>
#include <functional>

namespace glintar::arbiter {

namespace {

PriceRank rankOf(double price, const std::vector<ArbiterPrice>& sorted) {
    if (sorted.size() < 2) {
        return PriceRank::Between;
    }
    if (price == sorted.front().price) {
        return PriceRank::Highest;
    }
    return price == sorted.back().price ? PriceRank::Lowest : PriceRank::Between;
}

}  // namespace

std::string gapText(double price, double lower) {
    if (!(price > 0)) {
        return "0.00%";
    }
    const double gap = (price - lower) / price * 100;
    return gap > 0 && gap < 0.001 ? "<0.001%" : text::fixed(gap, 3) + "%";
}

std::vector<PriceEntry> priceEntries(const std::vector<ArbiterPrice>& prices) {
    auto sorted = prices;
    std::ranges::stable_sort(sorted, std::greater{}, &ArbiterPrice::price);
    std::vector<PriceEntry> entries;
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        auto& price = sorted[i];
        entries.push_back(
            {.id = price.id,
             .platformName = price.platformName,
             .iconName = price.iconName,
             .price = price.price,
             .text = presenter::panelPriceText(price.price),
             .rank = rankOf(price.price, sorted),
             .gap = i + 1 < sorted.size() ? std::optional(gapText(price.price, sorted[i + 1].price)) : std::nullopt});
    }
    return entries;
}

std::string ArbiterColumnView::heading() const {
    return text::oneLine(text::upper(data->coin.displayName));
}

}  // namespace glintar::arbiter
