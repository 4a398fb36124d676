#include "floating/PanelLayout.h"

#include "floating/CountdownRing.h"

#include <algorithm>
#include <cmath>

namespace glintar::floating {

namespace {

using platform::Graphics;
using platform::ImagePtr;
using platform::Rect;
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
constexpr double kSourceImageSide = 10;

/// Beyond this width lies nothing but nonsense, which is cut off.
constexpr double kLargestWidth = 4096;

Size measure(const std::vector<StyledText>& texts, const Graphics& graphics, bool isColumn) {
    Size size;
    for (const auto& text : texts) {
        const Size one = graphics.measure(text.text, text.font);
        size.width = isColumn ? std::max(size.width, one.width) : size.width + one.width;
        size.height = isColumn ? size.height + one.height : std::max(size.height, one.height);
    }
    return size;
}

Size measure(const Cell& cell, const Graphics& graphics) {
    return cell.sparkline ? kSparklineSize : measure(cell.lines, graphics, true);
}

/// A part of the header as it was measured.
struct Box {
    const HeaderItem* item = nullptr;
    ImagePtr image;  ///< of a symbol
    Size size;
};

std::vector<Box> measureFee(const std::vector<HeaderItem>& items, const Graphics& graphics) {
    std::vector<Box> boxes;
    for (const auto& item : items) {
        if (const auto* texts = std::get_if<std::vector<StyledText>>(&item)) {
            boxes.push_back({&item, nullptr, measure(*texts, graphics, false)});
        } else {
            const auto& symbol = std::get<StyledSymbol>(item);
            if (auto image = graphics.symbol(symbol.name, symbol.fontSize, symbol.color)) {
                const Size size = image->size();
                boxes.push_back({&item, std::move(image), size});
            }
        }
    }
    return boxes;
}

struct Grid {
    std::vector<double> columns;  ///< widths
    std::vector<double> rows;     ///< heights, without padding

    [[nodiscard]] Size size() const {
        Size size{0, 2 * kGridPaddingY};
        for (const double width : columns) {
            size.width += width + (size.width > 0 ? kColumnSpacing : 2 * kRowPaddingX);
        }
        for (std::size_t i = 0; i < rows.size(); ++i) {
            size.height += (i > 0 ? kRowSpacing : 0) + kDividerHeight + kRowSpacing + rows[i] + 2 * kRowPaddingY;
        }
        return size;
    }
};

Grid measureGrid(const std::vector<std::vector<Cell>>& rows, const Graphics& graphics) {
    Grid grid;
    for (const auto& row : rows) {
        grid.columns.resize(std::max(grid.columns.size(), row.size()));
        double height = 0;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const Size size = measure(row[column], graphics);
            grid.columns[column] = std::max(grid.columns[column], size.width);
            height = std::max(height, size.height);
        }
        grid.rows.push_back(height);
    }
    return grid;
}

/// Places things by their distance from the panel's top left corner, on whole pixels.
class Placer {
public:
    Placer(PanelLayout& layout, const Graphics& graphics, double scale, double margin)
        : layout_(layout), graphics_(graphics), scale_(scale), margin_(margin) {}

    [[nodiscard]] Rect at(double left, double down, Size size) const {
        return {margin_ + snapped(left), margin_ + snapped(layout_.plate.height - down - size.height), size.width,
                size.height};
    }

    void text(const StyledText& text, double left, double down) {
        layout_.texts.push_back({text, at(left, down, graphics_.measure(text.text, text.font))});
    }

    void symbol(const StyledSymbol& symbol, ImagePtr image, double left, double down) {
        const Rect frame = at(left, down, image->size());
        layout_.symbols.push_back({symbol, std::move(image), frame});
    }

    void cell(const Cell& cell, double left, double down, double columnWidth, double rowHeight) {
        const Size size = measure(cell, graphics_);
        // On a whole pixel once, so that the lines of every row are equally far apart.
        down = snapped(down + (rowHeight - size.height) / 2);
        const auto offset = [&](double width) {
            return cell.alignment == Cell::Alignment::Center ? (columnWidth - width) / 2 : columnWidth - width;
        };
        if (cell.sparkline) {
            layout_.sparklines.push_back({*cell.sparkline, at(left + offset(size.width), down, size)});
            return;
        }
        for (const auto& line : cell.lines) {
            const Size one = graphics_.measure(line.text, line.font);
            text(line, left + offset(one.width), down);
            down += one.height;
        }
    }

    void sourceImage(const FloatingContent& content) {
        const double middleX = layout_.ring.x + ring::kDiameter / 2;
        const double middleY = layout_.ring.y + ring::kDiameter / 2;
        const auto centered = [&](Size size) {
            return Rect{middleX - size.width / 2, middleY - size.height / 2, size.width, size.height};
        };
        if (auto image = graphics_.image(content.sourceID)) {
            const Size whole = image->size();
            const double shrink = kSourceImageSide / std::max({whole.width, whole.height, 1.0});
            layout_.sourceImageFrame = centered({whole.width * shrink, whole.height * shrink});
            layout_.sourceImage = std::move(image);
            return;
        }
        const StyledSymbol network{"network", 8, content.palette.primary};
        if (auto image = graphics_.symbol(network.name, network.fontSize, network.color)) {
            const Rect frame = centered(image->size());
            layout_.symbols.push_back({network, std::move(image), frame});
        }
    }

private:
    [[nodiscard]] double snapped(double length) const { return std::round(length * scale_) / scale_; }

    PanelLayout& layout_;
    const Graphics& graphics_;
    double scale_;
    double margin_;
};

void placeFee(Placer& placer, const std::vector<Box>& boxes, double left, double middle, const Graphics& graphics) {
    for (const auto& box : boxes) {
        const double down = middle - box.size.height / 2;
        if (box.image) {
            placer.symbol(std::get<StyledSymbol>(*box.item), box.image, left, down);
        } else {
            double start = left;
            for (const auto& piece : std::get<std::vector<StyledText>>(*box.item)) {
                const Size size = graphics.measure(piece.text, piece.font);
                // On one base line, whatever their sizes.
                const double higher = (box.size.height - size.height) * platform::kDescent / platform::kLineHeight;
                placer.text(piece, start, down + box.size.height - size.height - higher);
                start += size.width;
            }
        }
        left += box.size.width + kFeeSpacing;
    }
}

void placeGrid(Placer& placer, PanelLayout& layout, const FloatingContent& content, const Grid& grid, double left,
               double down) {
    down += kGridPaddingY;
    for (std::size_t i = 0; i < content.rows.size(); ++i) {
        down += i > 0 ? kRowSpacing : 0;
        layout.dividers.push_back(placer.at(left, down, {grid.size().width, kDividerHeight}));
        down += kDividerHeight + kRowSpacing + kRowPaddingY;
        double start = left + kRowPaddingX;
        for (std::size_t column = 0; column < content.rows[i].size(); ++column) {
            placer.cell(content.rows[i][column], start, down, grid.columns[column], grid.rows[i]);
            start += grid.columns[column] + kColumnSpacing;
        }
        down += grid.rows[i] + kRowPaddingY;
    }
}

}  // namespace

PanelLayout layOutPanel(const FloatingContent& content, const Graphics& graphics, double scale, double margin) {
    const auto fee = measureFee(content.fee, graphics);
    double feeWidth = 0;
    double headerHeight = ring::kDiameter;
    for (const auto& box : fee) {
        feeWidth += box.size.width + (&box == &fee.front() ? 0 : kFeeSpacing);
        headerHeight = std::max(headerHeight, box.size.height);
    }
    const Size name = graphics.measure(content.sourceName.text, content.sourceName.font);
    headerHeight = std::max(headerHeight, name.height) + 2 * kHeaderPaddingY;
    const double headerWidth = 2 * kHeaderPaddingX + ring::kDiameter + kHeaderSpacing + name.width +
                               (fee.empty() ? 0 : kHeaderSpacing + feeWidth);

    const Grid grid = measureGrid(content.rows, graphics);
    Size body = grid.size();
    if (content.loading) {
        const Size words = graphics.measure(content.loading->text, content.loading->font);
        body = {words.width + 2 * kLoadingPadding, words.height + 2 * kLoadingPadding};
    }

    const auto wholePixels = [&](double length) { return std::ceil(length * scale - 1e-6) / scale; };
    const double width = wholePixels(std::min(std::max(headerWidth, body.width) + 2 * kPadding, kLargestWidth));
    PanelLayout layout{.plate = {margin, margin, width, wholePixels(headerHeight + body.height + 2 * kPadding)}};
    Placer placer(layout, graphics, scale, margin);

    const double middle = kPadding + headerHeight / 2;
    double left = (width - headerWidth) / 2 + kHeaderPaddingX;
    layout.ring = placer.at(left, middle - ring::kDiameter / 2, {ring::kDiameter, ring::kDiameter});
    placer.sourceImage(content);
    left += ring::kDiameter + kHeaderSpacing;
    placer.text(content.sourceName, left, middle - name.height / 2);
    placeFee(placer, fee, left + name.width + kHeaderSpacing, middle, graphics);

    const double bodyLeft = (width - body.width) / 2;
    const double bodyDown = kPadding + headerHeight;
    if (content.loading) {
        placer.text(*content.loading, bodyLeft + kLoadingPadding, bodyDown + kLoadingPadding);
    } else {
        placeGrid(placer, layout, content, grid, bodyLeft, bodyDown);
    }
    return layout;
}

}  // namespace glintar::floating
