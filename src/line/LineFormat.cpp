#include "line/LineFormat.h"

#include "json/JsonWriter.h"
#include "text/Unicode.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace glintar::line {

namespace {

std::string coinText(const menubar::CoinPart& part) {
    std::string text = text::oneLine(text::upper(text::trimmed(part.coin.displayName)));
    text += ' ' + part.price;
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

std::string gasText(const menubar::GasPart& gas) {
    return (gas.network == market::GasNetwork::Bitcoin ? "₿ " : "⛽ ") + gas.text;
}

void writeNumber(json::Writer& writer, std::string_view key, const std::optional<double>& number) {
    writer.key(key);
    if (number) {
        writer.number(*number);
    } else {
        writer.null();
    }
}

void writeText(json::Writer& writer, std::string_view key, const std::optional<std::string>& text) {
    writer.key(key);
    if (text) {
        writer.string(*text);
    } else {
        writer.null();
    }
}

void writeCoin(json::Writer& writer, const menubar::CoinPart& part) {
    writer.beginObject();
    writer.key("id").string(part.coin.apiId);
    writer.key("name").string(part.coin.displayName);
    writeNumber(writer, "price", part.quote.price);
    writeNumber(writer, "reference", part.reference ? part.coin.referencePrice : std::nullopt);
    writeNumber(writer, "change24h", part.quote.change24h);
    writeNumber(writer, "high24h", part.quote.high24h);
    writeNumber(writer, "low24h", part.quote.low24h);
    writer.key("sparkline");
    if (part.quote.sparkline) {
        writer.beginArray();
        for (const double value : *part.quote.sparkline) {
            writer.number(value);
        }
        writer.endArray();
    } else {
        writer.null();
    }
    writeText(writer, "image", part.quote.imageUrl);
    writer.endObject();
}

void writeGas(json::Writer& writer, const std::optional<menubar::GasPart>& gas) {
    writer.key("gas");
    if (!gas) {
        writer.null();
        return;
    }
    writer.beginObject();
    writer.key("network").string(gas->network == market::GasNetwork::Bitcoin ? "bitcoin" : "ethereum");
    writeNumber(writer, "fee", gas->fee);
    writeNumber(writer, "transferCost", gas->transferCost);
    writer.endObject();
}

}  // namespace

std::string sparklineText(std::span<const double> values) {
    static constexpr std::array<std::string_view, 8> kBlocks{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    if (values.size() < 2) {
        return {};
    }
    const auto [low, high] = std::ranges::minmax(values);
    // Halves, or the range of two huge values of opposite sign would be infinite.
    const double range = high / 2 - low / 2;
    std::string text;
    for (const double value : values) {
        const double height = range > 0 ? (value / 2 - low / 2) / range : 0;
        const auto block = std::lround(height * (kBlocks.size() - 1));
        text += kBlocks[static_cast<std::size_t>(std::clamp(block, 0L, 7L))];
    }
    return text;
}

std::string plainText(const menubar::StatusLine& line) {
    std::vector<std::string> parts;
    if (line.emptyText) {
        parts.push_back(*line.emptyText);
    }
    for (const auto& coin : line.coins) {
        parts.push_back(coinText(coin));
    }
    if (line.gas) {
        parts.push_back(gasText(*line.gas));
    }
    if (line.error && !line.emptyText) {
        parts.push_back(menubar::errorText(*line.error));
    }
    std::string text;
    for (const auto& part : parts) {
        text += (text.empty() ? "" : " | ") + part;
    }
    return text;
}

std::string jsonText(const menubar::StatusLine& line, std::string_view plain, std::string_view tooltip) {
    json::Writer writer;
    writer.beginObject();
    writer.key("time").string(line.time);
    writer.key("source").string(line.sourceId);
    writeText(writer, "error", line.error);
    writer.key("tooltip").string(tooltip);
    writer.key("text").string(plain);
    writer.key("coins").beginArray();
    for (const auto& coin : line.coins) {
        writeCoin(writer, coin);
    }
    writer.endArray();
    writeGas(writer, line.gas);
    writer.endObject();
    return std::string(writer.text());
}

}  // namespace glintar::line
