#include "presenter/Publication.h"

#include "json/Json.h"
#include "json/JsonWriter.h"

#include <cmath>

namespace glintar::presenter {

namespace {

using json::View;

void write(json::Writer& writer, std::string_view key, const std::optional<double>& number) {
    if (number) {
        writer.key(key).number(*number);
    }
}

void write(json::Writer& writer, std::string_view key, const std::optional<std::string>& text) {
    if (text) {
        writer.key(key).string(*text);
    }
}

template <class Point>
void write(json::Writer& writer, std::string_view key, Point point)
    requires requires { typename Point::clock; }
{
    writer.key(key).integer(std::chrono::nanoseconds(point.time_since_epoch()).count());
}

void write(json::Writer& writer, const market::Arrival& arrival) {
    write(writer, "time", arrival.time);
    write(writer, "instant", arrival.instant);
    writer.key("old").boolean(arrival.isOld);
}

std::optional<double> number(View from, std::string_view key) {
    const auto member = from.member(key);
    return member ? member->number() : std::nullopt;
}

std::int64_t integer(View from, std::string_view key) {
    const auto member = from.member(key);
    return member ? member->integer().value_or(0) : 0;
}

bool boolean(View from, std::string_view key) {
    const auto member = from.member(key);
    return member && member->boolean().value_or(false);
}

std::optional<std::string> text(View from, std::string_view key) {
    const auto member = from.member(key);
    const auto found = member ? member->string() : std::nullopt;
    return found ? std::optional<std::string>(*found) : std::nullopt;
}

template <class Point>
Point point(View from, std::string_view key) {
    return Point(std::chrono::duration_cast<typename Point::duration>(std::chrono::nanoseconds(integer(from, key))));
}

market::Arrival arrival(View from) {
    return {point<platform::WallTime>(from, "time"), point<platform::Instant>(from, "instant"), boolean(from, "old")};
}

void writeQuote(json::Writer& writer, const std::string& id, const market::UnifiedMarketData& quote) {
    writer.beginObject().key("id").string(id).key("price").number(quote.price);
    write(writer, "image", quote.imageUrl);
    write(writer, "change", quote.change24h);
    write(writer, "high", quote.high24h);
    write(writer, "low", quote.low24h);
    if (quote.sparkline) {
        writer.key("sparkline").beginArray();
        for (const double value : *quote.sparkline) {
            writer.number(value);
        }
        writer.endArray();
    }
    write(writer, quote.arrival);
    writer.endObject();
}

void readQuote(View from, market::MarketDataMap& quotes) {
    const auto id = text(from, "id");
    const auto price = number(from, "price");
    if (!id || !price) {
        return;
    }
    auto& quote = quotes[*id];
    quote = {.price = *price,
             .imageUrl = text(from, "image"),
             .change24h = number(from, "change"),
             .high24h = number(from, "high"),
             .low24h = number(from, "low")};
    if (const auto values = from.member("sparkline")) {
        quote.sparkline = values->lastNumbers(values->size());
    }
    quote.arrival = arrival(from);
}

}  // namespace

std::string encode(const Publication& publication) {
    json::Writer writer;
    writer.beginObject().key("generation").integer(publication.generation);
    writer.key("wish").string(publication.wish);
    write(writer, "made", publication.made);
    write(writer, "next", publication.nextFetch);
    writer.key("interval").number(publication.interval.count());
    write(writer, "error", publication.outcome.error);
    writer.key("hasPrices").boolean(publication.outcome.hasPrices).key("time").string(publication.outcome.time);
    writer.key("tooltip").string(publication.tooltip).key("quotes").beginArray();
    for (const auto& [id, quote] : publication.quotes) {
        writeQuote(writer, id, quote);
    }
    writer.endArray();
    if (publication.fee) {
        writer.key("fee").beginObject().key("price").number(publication.fee->price);
        write(writer, publication.fee->arrival);
        writer.endObject();
    }
    return std::string(writer.endObject().text());
}

std::optional<Publication> decodePublication(std::string page) {
    const auto document = json::parseContainer(std::move(page));
    if (!document) {
        return std::nullopt;
    }
    const auto root = document->root();
    Publication publication{.generation = integer(root, "generation"),
                            .wish = text(root, "wish").value_or(""),
                            .made = point<platform::BootInstant>(root, "made"),
                            .nextFetch = point<platform::BootInstant>(root, "next"),
                            .interval = platform::Seconds(number(root, "interval").value_or(0)),
                            .outcome = {.error = text(root, "error"),
                                        .hasPrices = boolean(root, "hasPrices"),
                                        .time = text(root, "time").value_or("")},
                            .tooltip = text(root, "tooltip").value_or("")};
    const bool isWhole = publication.generation > 0 && publication.interval > platform::Seconds(1) &&
                         publication.interval < platform::Seconds(3600);
    const auto quotes = root.member("quotes");
    if (!isWhole || !quotes) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < quotes->size(); ++i) {
        readQuote(quotes->at(i), publication.quotes);
    }
    if (const auto fee = root.member("fee"); fee && number(*fee, "price")) {
        publication.fee.emplace(*number(*fee, "price"), arrival(*fee));
    }
    return publication;
}

}  // namespace glintar::presenter
