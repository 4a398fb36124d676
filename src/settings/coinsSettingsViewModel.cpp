#include "settings/coinsSettingsViewModel.h"

#include "config/Settings.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "text/Number.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace glintar::settings {

namespace {

constexpr std::size_t kMaxSuggestions = 20;
constexpr std::chrono::milliseconds kTimeToPaint{100};

/// Line breaks stay: they are part of what was pasted.
std::string_view withoutBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

coinsSettingsViewModel::coinsSettingsViewModel(platform::Platform& platform)
    : platform_(platform), updates_(platform.notifications.observe(config::kCoinsUpdated, [this] {
          readCoins();
          updateLimit();
          changed();
      })) {}

void coinsSettingsViewModel::loadCoins() {
    readCoins();
    updateLimit();
    changed();
    catalogueLoading_ = platform_.runLoop.after(kTimeToPaint, [this] { loadCoinCatalogue(); });
}

void coinsSettingsViewModel::readCoins() {
    if (auto saved = platform_.preferences.data(config::kSavedCoinsKey)) {
        if (auto decoded = config::decodeCoins(*std::move(saved))) {
            coins = *std::move(decoded);
        }
    }
}

void coinsSettingsViewModel::saveCoins() {
    isSaved = platform_.preferences.setData(config::kSavedCoinsKey, config::encodeCoins(coins));
    if (!isSaved) {
        errorMessage = config::kNotSaved;
        return;
    }
    if (errorMessage == config::kNotSaved) {
        errorMessage.reset();
    }
    platform_.notifications.post(config::kCoinsUpdated);
}

void coinsSettingsViewModel::loadCoinCatalogue() {
    catalogueLoading_.reset();
    if (allCoinEntries_.empty()) {
        allCoinEntries_ = config::loadCoinCatalogue(platform_);
        search_.emplace(allCoinEntries_);
    }
}

void coinsSettingsViewModel::filterCoins() {
    loadCoinCatalogue();
    const std::string lowered = text::lower(newCoinDisplayName);
    const auto query = withoutBlanks(lowered);
    filteredCoins.clear();
    if (!query.empty()) {
        for (const auto place : search_->startingWith(query, kMaxSuggestions)) {
            const auto entry = allCoinEntries_[place];
            filteredCoins.push_back(fmt::format("{} ({})", text::upper(entry.symbol), entry.id));
        }
    }
    changed();
}

coinsSettingsViewModel::Chosen coinsSettingsViewModel::choose(std::string_view text) const {
    const auto open = text.rfind('(');
    const auto close = text.rfind(')');
    if (open != std::string_view::npos && close != std::string_view::npos && open < close) {
        return {std::string(withoutBlanks(text.substr(0, open))), std::string(text.substr(open + 1, close - open - 1))};
    }
    const auto place = search_ ? search_->named(text::lower(text)) : std::nullopt;
    if (!place) {
        return {};
    }
    const auto entry = allCoinEntries_[*place];
    return {text::upper(entry.symbol), std::string(entry.id)};
}

void coinsSettingsViewModel::addCoin() {
    const auto typed = withoutBlanks(newCoinDisplayName);
    if (typed.empty()) {
        return;
    }
    if (catalogueLoading_) {
        loadCoinCatalogue();
    }
    auto chosen = choose(typed);
    if (chosen.apiId.empty()) {
        isSaved = false;
        return fail("Crypto coin not found, please choose from the list.");
    }
    if (std::ranges::find(coins, chosen.apiId, &config::Coin::apiId) != coins.end()) {
        return fail("This crypto coin is already on the list.");
    }
    coins.push_back(config::makeCoin(platform_.entropy, std::move(chosen.displayName), std::move(chosen.apiId),
                                     text::parseDecimal(newCoinRefPrice).value_or(0)));
    saveCoins();
    if (isSaved) {
        newCoinDisplayName.clear();
        newCoinRefPrice.clear();
        errorMessage.reset();
    } else {
        coins.pop_back();
    }
    filteredCoins.clear();
    updateLimit();
    changed();
}

void coinsSettingsViewModel::fail(std::string message) {
    errorMessage = std::move(message);
    changed();
}

void coinsSettingsViewModel::removeCoin(std::string_view id) {
    const auto found = std::ranges::find(coins, id, &config::Coin::id);
    if (found != coins.end()) {
        removeCoins({static_cast<std::size_t>(found - coins.begin())});
    }
}

void coinsSettingsViewModel::removeCoins(const std::set<std::size_t>& positions) {
    auto before = coins;
    std::size_t position = 0;
    std::erase_if(coins, [&](const auto&) { return positions.contains(position++); });
    saveCoins();
    if (!isSaved) {
        coins = std::move(before);
    }
    updateLimit();
    changed();
}

void coinsSettingsViewModel::updateLimit() {
    maxCoins = 5;
    canAddCoin = coins.size() < maxCoins;
}

void coinsSettingsViewModel::selectSuggestion(std::string suggestion) {
    newCoinDisplayName = std::move(suggestion);
    filteredCoins.clear();
    changed();
}

void coinsSettingsViewModel::setName(std::string text) {
    newCoinDisplayName = std::move(text);
    filterCoins();
}

void coinsSettingsViewModel::setRefPrice(std::string_view text) {
    newCoinRefPrice.clear();
    std::ranges::copy_if(text, std::back_inserter(newCoinRefPrice),
                         [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
    changed();
}

std::string coinsSettingsViewModel::rowText(const config::Coin& coin) {
    return fmt::format("{} ({})", coin.displayName, coin.apiId);
}

std::optional<std::string> coinsSettingsViewModel::badgeText(const config::Coin& coin) {
    return coin.referencePrice.value_or(0) > 0 ? std::optional("Ref: " + text::fixed(*coin.referencePrice, 2))
                                               : std::nullopt;
}

std::string coinsSettingsViewModel::limitText() const {
    return fmt::format("You have reached the limit of {} coins.", maxCoins);
}

void coinsSettingsViewModel::changed() {
    if (onChange) {
        onChange();
    }
}

}  // namespace glintar::settings
