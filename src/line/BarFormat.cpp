#include "line/BarFormat.h"

#include "json/Json.h"
#include "json/JsonWriter.h"
#include "presenter/LineText.h"
#include "presenter/SystemColors.h"
#include "text/Address.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <cmath>

namespace glintar::line {

namespace {

using presenter::StatusLine;
using presenter::SystemColor;

/// Pango's markup is XML: in it these characters stand for themselves nowhere.
std::string markup(std::string_view text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            case '\'':
                result += "&#39;";
                break;
            default:
                result += character;
        }
    }
    return result;
}

std::string_view stateOf(const StatusLine& line) {
    if (line.hasOld()) {
        return "stale";
    }
    return line.emptyText || line.failure ? "error" : "ok";
}

/// One row a coin with all that is known of it, then how the last refresh ended.
std::string details(const BarLine& bar) {
    std::string text;
    for (const auto& coin : bar.line.coins) {
        text += presenter::plainText(presenter::composeCoin({.change24h = true, .highLow24h = true, .sparkline = true},
                                                            coin.coin, coin.quote)) +
                '\n';
    }
    if (bar.line.gas) {
        text += presenter::plainText(*bar.line.gas) + '\n';
    }
    return markup(text::printable(text + bar.tooltip));
}

std::string textOf(const BarLine& bar) {
    return bar.prefix + presenter::plainText(bar.line);
}

std::optional<std::string> colorOf(const presenter::LinePiece& piece) {
    if (!piece.coin || !piece.coin->quote.change24h || *piece.coin->quote.change24h == 0) {
        return std::nullopt;
    }
    const auto color = presenter::systemColor(*piece.coin->quote.change24h > 0 ? SystemColor::Green : SystemColor::Red,
                                              platform::Appearance::Dark);
    const auto byte = [](double share) { return static_cast<int>(std::lround(share * 255)); };
    return fmt::format("#{:02x}{:02x}{:02x}", byte(color.red), byte(color.green), byte(color.blue));
}

/// As wide as the text whatever its digits and sign are. The bar measures it.
std::string widest(std::string text) {
    for (char& character : text) {
        if (character >= '0' && character <= '9') {
            character = '0';
        } else if (character == '-') {
            character = '+';
        }
    }
    return text;
}

void writeBlock(json::Writer& writer, const std::string& text, const presenter::LinePiece& piece) {
    writer.beginObject().key("full_text").string(text);
    if (piece.coin) {
        const presenter::CoinPart brief{.coin = piece.coin->coin, .price = piece.coin->price};
        const auto mark = text.substr(0, text.size() - presenter::plainText(*piece.coin).size());  // old, simulated
        writer.key("short_text").string(mark + presenter::plainText(brief));
    }
    if (const auto color = colorOf(piece)) {
        writer.key("color").string(*color);
    }
    writer.key("min_width").string(widest(text)).key("name").string("glintar");
    writer.key("instance").string(piece.coin ? piece.coin->coin.apiId : piece.gas ? "fee" : "state");
    writer.endObject();
}

}  // namespace

StatusLine selected(StatusLine line, const std::optional<app::Fields>& fields, const std::optional<std::string>& coin) {
    const bool hadCoins = !line.coins.empty();
    if (coin) {
        std::erase_if(line.coins, [&](const auto& part) { return part.coin.apiId != *coin; });
        line.gas = fields && fields->fee ? std::move(line.gas) : std::nullopt;
        if (hadCoins && line.coins.empty()) {
            line.emptyText = line.failure.value_or(presenter::emptyLineText(std::nullopt));
        }
    }
    if (!fields) {
        return line;
    }
    for (auto& part : line.coins) {
        part = presenter::composeCoin(
            {.change24h = fields->change, .highLow24h = fields->range, .sparkline = fields->sparkline}, part.coin,
            part.quote);
        part.price = fields->price ? std::move(part.price) : "";
        part.reference = fields->reference ? std::move(part.reference) : std::nullopt;
    }
    if (!fields->hasCoins()) {
        line.coins.clear();
    }
    line.gas = fields->fee ? std::move(line.gas) : std::nullopt;
    return line;
}

std::string escaped(app::Format format, std::string text) {
    switch (format) {
        case app::Format::Tmux:
            return text::replaceAll(text, "#", "##");
        case app::Format::Polybar:
            return text::replaceAll(text, "%{", "% {");  // it knows no escape
        default:
            return text;
    }
}

std::string waybarText(const BarLine& bar) {
    const auto state = stateOf(bar.line);
    json::Writer writer;
    writer.beginObject().key("text").string(markup(textOf(bar))).key("alt").string(state);
    writer.key("tooltip").string(details(bar)).key("class").beginArray().string(state);
    const auto change = bar.line.coins.empty() ? std::nullopt : bar.line.coins.front().quote.change24h;
    if (change.value_or(0) != 0) {
        writer.string(*change > 0 ? "up" : "down");
    }
    writer.endArray().key("percentage").integer(bar.percentage).key("time").string(bar.line.time);
    writer.key("updated");
    bar.updated ? writer.string(*bar.updated) : writer.null();
    writer.key("stale").boolean(bar.line.hasOld()).endObject();
    return std::string(writer.text());
}

std::string genmonText(const BarLine& bar) {
    return fmt::format("<txt>{}</txt>\n<tool>{}</tool>\n<txtclick>glintar --dashboard</txtclick>", markup(textOf(bar)),
                       details(bar));
}

std::string i3barHeader() {
    return fmt::format("{{\"version\":1,\"stop_signal\":{},\"cont_signal\":{},\"click_events\":true}}\n[", kStopSignal,
                       kContSignal);
}

std::string i3barText(const BarLine& bar) {
    json::Writer writer;
    writer.beginArray();
    auto prefix = bar.prefix;
    for (const auto& piece : presenter::pieces(bar.line)) {
        writeBlock(writer, std::exchange(prefix, "") + piece.text, piece);
    }
    writer.endArray();
    return std::string(writer.text()) + ',';
}

std::optional<std::int64_t> clickedButton(std::string_view line) {
    const auto at = line.find('{');
    if (at == std::string_view::npos) {
        return std::nullopt;  // the array's beginning
    }
    const auto click = json::parseContainer(std::string(line.substr(at)));
    const auto button = click ? click->root().member("button") : std::nullopt;
    return button ? button->integer() : std::nullopt;
}

}  // namespace glintar::line
