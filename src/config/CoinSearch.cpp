#include "config/CoinSearch.h"

#include "text/Unicode.h"

#include <algorithm>
#include <utility>

namespace glintar::config {

CoinSearch::CoinSearch(const CoinCatalogue& catalogue) {
    ends_.reserve(catalogue.size() * kFields);
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const CoinEntry entry = catalogue[i];
        for (const std::string_view text : {entry.symbol, entry.id, entry.name}) {
            lowered_ += text::lower(text);
            ends_.push_back(static_cast<std::uint32_t>(lowered_.size()));
        }
    }
    lowered_.shrink_to_fit();
}

std::string_view CoinSearch::text(std::size_t index, Field field) const {
    const std::size_t at = index * kFields + field;
    const std::size_t begin = at == 0 ? 0 : ends_[at - 1];
    return std::string_view(lowered_).substr(begin, ends_[at] - begin);
}

std::vector<std::size_t> CoinSearch::startingWith(std::string_view prefix, std::size_t limit) const {
    // Most texts differ in their first byte, which is cheaper to look at than to call a function for.
    const auto begins = [&](std::string_view text) {
        return text.size() >= prefix.size() && text[0] == prefix[0] && text.starts_with(prefix);
    };
    std::vector<std::pair<std::size_t, std::size_t>> found;  // length of the symbol, place
    for (std::size_t i = 0; i < size(); ++i) {
        const auto symbol = text(i, kSymbol);
        if (begins(symbol) || begins(text(i, kId)) || begins(text(i, kName))) {
            found.emplace_back(text::characterCount(symbol), i);
        }
    }
    const auto kept = std::min(limit, found.size());
    std::ranges::partial_sort(found, found.begin() + static_cast<std::ptrdiff_t>(kept));
    std::vector<std::size_t> places;
    places.reserve(kept);
    for (std::size_t i = 0; i < kept; ++i) {
        places.push_back(found[i].second);
    }
    return places;
}

std::optional<std::size_t> CoinSearch::named(std::string_view text) const {
    const auto bySymbol = first(kSymbol, text);
    return bySymbol ? bySymbol : first(kId, text);
}

std::optional<std::size_t> CoinSearch::first(Field field, std::string_view wanted) const {
    for (std::size_t i = 0; i < size(); ++i) {
        if (text(i, field) == wanted) {
            return i;
        }
    }
    return std::nullopt;
}

}  // namespace glintar::config
