#include "line/CompareFormat.h"

#include "json/JsonWriter.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>

namespace glintar::line {

namespace {

/// A cell's three parts stand in columns of their own.
struct Cell {
    std::string price = "-";
    std::string mark;
    std::string gap;
};

struct Column {
    std::string heading;
    std::vector<Cell> cells;  // one for each source
};

Column columnOf(const arbiter::CoinArbitrageData& row, const std::vector<std::string>& sources) {
    Column column{.heading = text::oneLine(text::upper(row.coin.displayName)), .cells = {}};
    const auto entries = arbiter::priceEntries(row.prices);
    for (const auto& source : sources) {
        const auto entry = std::ranges::find(entries, source, &arbiter::PriceEntry::platformName);
        auto& cell = column.cells.emplace_back();
        if (entry != entries.end()) {
            cell = {.price = entry->text,
                    .mark = entry->price == entries.front().price ? "▲" : "",
                    .gap = entry->gap.value_or("")};
        }
    }
    return column;
}

std::string padding(std::string_view text, std::size_t width) {
    return std::string(width - std::min(width, text::columnCount(text)), ' ');
}

template <class Range, class Part>
std::size_t widest(const Range& range, Part part, std::size_t atLeast = 0) {
    for (const auto& item : range) {
        atLeast = std::max(atLeast, text::columnCount(std::invoke(part, item)));
    }
    return atLeast;
}

void addColumn(std::vector<std::string>& lines, const Column& column) {
    const auto priceWidth = widest(column.cells, &Cell::price, text::columnCount(column.heading));
    const auto gapWidth = widest(column.cells, &Cell::gap);
    lines[0] += fmt::format("  {}{}{:{}}", padding(column.heading, priceWidth), column.heading, "", gapWidth + 4);
    for (std::size_t i = 0; i < column.cells.size(); ++i) {
        const auto& [price, mark, gap] = column.cells[i];
        lines[i + 1] += fmt::format("  {}{} {}{}  {}{}", padding(price, priceWidth), price, mark, padding(mark, 1),
                                    padding(gap, gapWidth), gap);
    }
}

}  // namespace

std::string compareText(const std::vector<std::string>& sources, const CompareRows& coins, std::string_view corner) {
    std::vector<std::string> lines{std::string(corner)};
    for (const auto& source : sources) {
        lines.push_back(text::oneLine(source));
    }
    const auto nameWidth = widest(lines, std::identity());
    for (auto& line : lines) {
        line += padding(line, nameWidth);
    }
    for (const auto& row : coins) {
        addColumn(lines, columnOf(*row, sources));
    }
    std::string text;
    for (const auto& line : lines) {
        text += (text.empty() ? "" : "\n") + line.substr(0, line.find_last_not_of(' ') + 1);
    }
    return text;
}

std::string compareJson(std::string_view time, const CompareRows& coins) {
    json::Writer writer;
    writer.beginObject().key("time").string(time).key("coins").beginArray();
    for (const auto& row : coins) {
        writer.beginObject().key("id").string(row->coin.apiId).key("name").string(row->coin.displayName);
        writer.key("prices").beginArray();
        for (const auto& entry : arbiter::priceEntries(row->prices)) {
            writer.beginObject().key("source").string(entry.iconName).key("name").string(entry.platformName);
            writer.key("price").number(entry.price).key("gap");
            entry.gap ? writer.string(*entry.gap) : writer.null();
            writer.endObject();
        }
        writer.endArray().endObject();
    }
    writer.endArray().endObject();
    return std::string(writer.text());
}

}  // namespace glintar::line
