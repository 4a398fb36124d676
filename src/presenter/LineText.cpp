#include "presenter/LineText.h"

#include "presenter/Sparkline.h"
#include "text/Unicode.h"

#include <array>
#include <cmath>

namespace glintar::presenter {

std::string sparklineText(std::span<const double> values) {
    static constexpr std::array<std::string_view, 8> kBlocks{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    std::string text;
    for (const double height : sparklineHeights(values)) {
        text += kBlocks.at(static_cast<std::size_t>(std::lround(height * (kBlocks.size() - 1))));
    }
    return text;
}

std::string plainText(const CoinPart& part) {
    std::string text = text::oneLine(text::upper(text::trimmed(part.coin.displayName)));
    if (!part.price.empty()) {
        text += ' ' + part.price;
    }
    if (part.reference) {
        text += " (" + *part.reference + ")";
    }
    if (part.change) {
        text += ' ' + *part.change;
    }
    if (part.highLow) {
        text += ' ' + part.highLow->high + '/' + part.highLow->low;
    }
    if (const auto sparkline = part.showsSparkline ? sparklineText(*part.quote.sparkline) : ""; !sparkline.empty()) {
        text += ' ' + sparkline;
    }
    return text;
}

std::string plainText(const GasPart& gas) {
    return (gas.network == market::GasNetwork::Bitcoin ? "₿ " : "⛽ ") + gas.text;
}

std::vector<LinePiece> pieces(const StatusLine& line) {
    std::vector<LinePiece> parts;
    // What failed stands first; where some came, each that did not is marked by itself.
    const auto marked = [](bool isOld, std::string text) { return (isOld ? "⚠️ " : "") + std::move(text); };
    const bool isSaidOnce = line.failure && line.areAllCoinsOld();
    if (line.emptyText) {
        parts.push_back({.text = *line.emptyText});
    } else if (isSaidOnce) {
        parts.push_back({.text = *line.failure});
    }
    for (const auto& coin : line.coins) {
        parts.push_back({.text = marked(coin.quote.arrival.isOld && !isSaidOnce, plainText(coin)), .coin = &coin});
    }
    if (line.gas) {
        parts.push_back(
            {.text = marked(line.gas->arrival.isOld && !isSaidOnce, plainText(*line.gas)), .gas = &*line.gas});
    }
    return parts;
}

std::string plainText(const StatusLine& line) {
    std::string text;
    for (const auto& piece : pieces(line)) {
        text += (text.empty() ? "" : " | ") + piece.text;
    }
    return text;
}

}  // namespace glintar::presenter
