#include "floating/PanelLayout.h"

#include "floating/CountdownRing.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace glintar::floating {

namespace {

using platform::Graphics;
using platform::Size;

constexpr double kPadding = 4;
constexpr double kHeaderSpacing = 8;
constexpr double kHeaderPaddingX = 10;
constexpr double kHeaderPaddingY = 6;
constexpr double kFeeSpacing = 4;
constexpr double kLoadingPadding = 8;
constexpr double kGridPaddingY = 4;
constexpr double kColumnSpacing = 16;
constexpr double kRowSpacing = 8;
constexpr double kRowPaddingX = 6;
constexpr double kRowPaddingY = 4;
constexpr double kDividerHeight = 1;
constexpr Size kSparklineSize{40, 20};
constexpr Size kSourceImageSize{10, 10};
constexpr double kSourceSymbolSize = 8;

/// Beyond this width lies nothing but nonsense, which is cut off.
constexpr double kLargestWidth = 4096;

/// Which share of the room that is left lies before a part.
constexpr double kLeading = 0;
constexpr double kCenter = 0.5;
constexpr double kTrailing = 1;

double before(double room, double length, double share) {
    return (room - length) * share;
}

/// A part of the panel: what it holds, by the distance from its top left corner, and how large it is. Every size comes
/// from what was put where, so that sizes and places agree.
struct Part {
    Size size;
    std::vector<PanelLayout::Item> items;  ///< their y grows downwards

    /// Makes room for it where there is none.
    void put(Part part, double left, double down) {
        for (auto& item : part.items) {
            item.frame.x += left;
            item.frame.y += down;
        }
        std::ranges::move(part.items, std::back_inserter(items));
        size.width = std::max(size.width, left + part.size.width);
        size.height = std::max(size.height, down + part.size.height);
    }
};

Part single(auto what, const Size& size) {
    return {size, {{std::move(what), {0, 0, size.width, size.height}}}};
}

Part padded(Part part, double x, double y) {
    const Size size{part.size.width + 2 * x, part.size.height + 2 * y};
    Part result;
    result.put(std::move(part), x, y);
    result.size = size;
    return result;
}

/// One beside the other, with their middles on a line.
Part beside(std::vector<Part> parts, double spacing) {
    double height = 0;
    for (const auto& part : parts) {
        height = std::max(height, part.size.height);
    }
    Part result;
    for (auto& part : parts) {
        const double down = before(height, part.size.height, kCenter);
        const double gap = &part == &parts.front() ? 0 : spacing;
        result.put(std::move(part), result.size.width + gap, down);
    }
    return result;
}

double widest(const std::vector<Part>& parts) {
    double width = 0;
    for (const auto& part : parts) {
        width = std::max(width, part.size.width);
    }
    return width;
}

/// One below the other.
Part stacked(std::vector<Part> parts, double spacing, double share) {
    const double width = widest(parts);
    Part result;
    for (auto& part : parts) {
        const double left = before(width, part.size.width, share);
        const double gap = &part == &parts.front() ? 0 : spacing;
        result.put(std::move(part), left, result.size.height + gap);
    }
    return result;
}

Part cutOff(Part part) {
    part.size.width = std::min(part.size.width, kLargestWidth - 2 * kPadding);
    return part;
}

/// Makes the parts from what they say. Each text is measured once.
class PartMaker {
public:
    PartMaker(const Graphics& graphics, const PixelGrid& pixels) : graphics_(graphics), pixels_(pixels) {}

    [[nodiscard]] Part header(const FloatingContent& content) const {
        std::vector<Part> parts{ring(content), text(content.sourceName)};
        if (!content.fee.empty()) {
            parts.push_back(fee(content.fee));
        }
        return padded(beside(std::move(parts), kHeaderSpacing), kHeaderPaddingX, kHeaderPaddingY);
    }

    [[nodiscard]] Part body(const FloatingContent& content) const {
        return content.loading ? padded(text(*content.loading), kLoadingPadding, kLoadingPadding) : grid(content.rows);
    }

private:
    /// Whole pixels high, so that the lines of every row are equally far apart.
    [[nodiscard]] Part text(const StyledText& text) const {
        const Size size = graphics_.measure(text.text, text.font);
        return single(text, {size.width, pixels_.nearest(size.height)});
    }

    /// Nothing where there is no such symbol.
    [[nodiscard]] std::vector<Part> symbol(const StyledSymbol& symbol) const {
        auto image = graphics_.symbol(symbol.name, symbol.fontSize, symbol.color);
        if (!image) {
            return {};
        }
        const Size size = image->size();
        return {single(PanelLayout::Symbol{symbol, std::move(image)}, size)};
    }

    /// The pieces of one text, on one base line whatever their sizes.
    [[nodiscard]] Part run(const std::vector<StyledText>& pieces) const {
        std::vector<Part> parts;
        std::vector<double> ascents;
        for (const auto& piece : pieces) {
            parts.push_back(text(piece));
            ascents.push_back(parts.back().size.height - platform::kDescent * piece.font.size);
        }
        Part result;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            result.put(std::move(parts[i]), result.size.width, std::ranges::max(ascents) - ascents[i]);
        }
        return result;
    }

    [[nodiscard]] Part ring(const FloatingContent& content) const {
        constexpr double kSide = CountdownRing::kDiameter;
        Part result = single(PanelLayout::Ring{}, {kSide, kSide});
        std::vector<Part> source;
        if (auto image = graphics_.image(content.sourceID)) {
            const Size size = platform::fittedSize(image->size(), kSourceImageSize);
            source.push_back(single(std::move(image), size));
        } else {
            source = symbol({"network", kSourceSymbolSize, content.palette.primary});
        }
        for (auto& part : source) {
            const Size size = part.size;
            result.put(std::move(part), before(kSide, size.width, kCenter), before(kSide, size.height, kCenter));
        }
        return result;
    }

    [[nodiscard]] Part fee(const std::vector<HeaderItem>& items) const {
        std::vector<Part> parts;
        for (const auto& item : items) {
            if (const auto* pieces = std::get_if<std::vector<StyledText>>(&item)) {
                parts.push_back(run(*pieces));
            } else {
                std::ranges::move(symbol(std::get<StyledSymbol>(item)), std::back_inserter(parts));
            }
        }
        return beside(std::move(parts), kFeeSpacing);
    }

    [[nodiscard]] Part cell(const Cell& cell) const {
        if (cell.sparkline) {
            return single(*cell.sparkline, kSparklineSize);
        }
        std::vector<Part> lines;
        lines.reserve(cell.lines.size());
        for (const auto& line : cell.lines) {
            lines.push_back(text(line));
        }
        return stacked(std::move(lines), 0, shareOf(cell));
    }

    [[nodiscard]] Part grid(const std::vector<std::vector<Cell>>& rows) const {
        std::vector<std::vector<Part>> cells;
        std::vector<double> columns;  // widths
        for (const auto& row : rows) {
            cells.emplace_back();
            columns.resize(std::max(columns.size(), row.size()));
            for (std::size_t i = 0; i < row.size(); ++i) {
                cells.back().push_back(cell(row[i]));
                columns[i] = std::max(columns[i], cells.back()[i].size.width);
            }
        }
        std::vector<Part> lines;
        for (std::size_t row = 0; row < rows.size(); ++row) {
            std::vector<Part> placed;
            for (std::size_t i = 0; i < rows[row].size(); ++i) {
                const double left = before(columns[i], cells[row][i].size.width, shareOf(rows[row][i]));
                placed.emplace_back().put(std::move(cells[row][i]), left, 0);
                placed.back().size.width = columns[i];
            }
            lines.push_back(padded(beside(std::move(placed), kColumnSpacing), kRowPaddingX, kRowPaddingY));
        }
        const Size divider{widest(lines), pixels_.line(kDividerHeight)};
        for (auto& line : lines) {
            line = stacked({single(PanelLayout::Divider{}, divider), std::move(line)}, kRowSpacing, kLeading);
        }
        return padded(stacked(std::move(lines), kRowSpacing, kLeading), 0, kGridPaddingY);
    }

    [[nodiscard]] static double shareOf(const Cell& cell) {
        return cell.alignment == Cell::Alignment::Center ? kCenter : kTrailing;
    }

    const Graphics& graphics_;
    const PixelGrid& pixels_;
};

}  // namespace

PanelLayout layOutPanel(const FloatingContent& content, const Graphics& graphics, const PixelGrid& pixels,
                        double margin) {
    const PartMaker maker(graphics, pixels);
    Part panel = stacked({cutOff(maker.header(content)), cutOff(maker.body(content))}, 0, kCenter);
    panel = padded(std::move(panel), kPadding, kPadding);
    PanelLayout layout{.plate = {margin, margin, pixels.covering(panel.size.width), pixels.covering(panel.size.height)},
                       .ring = {},
                       .items = std::move(panel.items)};
    for (auto& [what, frame] : layout.items) {
        frame.x = margin + pixels.nearest(frame.x);
        // From the top, since of two places that are equally near the lower one keeps texts on one base line.
        frame.y = margin + layout.plate.height - pixels.nearest(frame.y + frame.height);
        if (std::holds_alternative<PanelLayout::Ring>(what)) {
            layout.ring = frame;
        }
    }
    return layout;
}

}  // namespace glintar::floating
