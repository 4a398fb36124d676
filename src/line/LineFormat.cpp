#include "line/LineFormat.h"

#include "json/JsonWriter.h"
#include "platform/Machine.h"

namespace glintar::line {

namespace {

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

/// When it came, and whether the last refresh brought it.
void writeAge(json::Writer& writer, const platform::LocalTime& local, const std::optional<market::Arrival>& arrival,
              bool isOld) {
    writeText(writer, "updated", arrival ? std::optional(local.timestamp(arrival->time)) : std::nullopt);
    writer.key("stale").boolean(isOld);
}

void writeCoin(json::Writer& writer, const platform::LocalTime& local, const presenter::CoinPart& part) {
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
    writeAge(writer, local, part.quote.arrival, part.quote.arrival.isOld);
    writer.endObject();
}

void writeGas(json::Writer& writer, const std::optional<presenter::GasPart>& gas) {
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

std::string jsonText(const presenter::StatusLine& line, const platform::LocalTime& local, std::string_view plain,
                     std::string_view tooltip) {
    json::Writer writer;
    writer.beginObject();
    writer.key("time").string(line.time);
    writeAge(writer, local, line.newest(), line.hasOld());
    writer.key("source").string(line.sourceId);
    writeText(writer, "error", line.error);
    writer.key("tooltip").string(tooltip);
    writer.key("text").string(plain);
    writer.key("coins").beginArray();
    for (const auto& coin : line.coins) {
        writeCoin(writer, local, coin);
    }
    writer.endArray();
    writeGas(writer, line.gas);
    writer.endObject();
    return std::string(writer.text());
}

}  // namespace glintar::line
