#include "menubar/CoinPill.h"

#include "menubar/PillColors.h"
#include "text/Unicode.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <span>
#include <vector>

namespace glintar::menubar {

using platform::Color;
using platform::Font;
using platform::Graphics;
using platform::Point;
using platform::Rect;
using platform::Size;
using Weight = platform::Font::Weight;
using Digits = platform::Font::Digits;

namespace {

constexpr double kGap = 6;
constexpr double kIconSize = 18;
constexpr double kSparklineWidth = 36;
constexpr double kLeastWidth = 40;

struct Text {
    std::string text;
    Font font;
    Color color;
};

/// Texts one after the other, on one base line.
using Row = std::vector<Text>;

struct PlacedText {
    Text text;
    Point origin;
};

/// What stands where on the pill.
struct Layout {
    double width = 0;
    Rect head;          ///< the icon or the badge
    Point badgeOrigin;  ///< of the badge's text
    std::vector<PlacedText> texts;
    std::optional<Rect> sparkline;
};

constexpr Font kBadgeFont{.size = 10, .weight = Weight::Bold, .digits = Digits::AsDesigned};

Size sizeOf(const Graphics& graphics, const Row& row) {
    Size whole;
    for (const auto& part : row) {
        const Size size = graphics.measure(part.text, part.font);
        whole = {whole.width + size.width, std::max(whole.height, size.height)};
    }
    return whole;
}

void place(const Graphics& graphics, Row row, Point origin, std::vector<PlacedText>& placed) {
    // The small texts of a row stand on the line of the largest.
    double largest = 0;
    for (const auto& part : row) {
        largest = std::max(largest, part.font.size);
    }
    for (auto& part : row) {
        const double width = graphics.measure(part.text, part.font).width;
        const double y = origin.y + platform::kDescent * (largest - part.font.size);
        placed.push_back({std::move(part), {origin.x, y}});
        origin.x += width;
    }
}

Row changeRow(const CoinPart& part, const Look& look, bool isCompact) {
    if (!part.change) {
        return {};
    }
    const bool hasFallen = part.quote.change24h.value_or(0) < 0;
    return {{*part.change, Font{.size = isCompact ? 11.0 : 13.0},
             colorNamed(hasFallen ? "red" : "green", look.appearance)}};
}

Row highLowRow(const CoinPart& part, const Look& look, bool isCompact) {
    if (!part.highLow) {
        return {};
    }
    const Font normal{.size = 12, .weight = Weight::Medium};
    const auto font = [&](double size, Weight weight) {
        return isCompact ? Font{.size = size, .weight = weight, .digits = Digits::AsDesigned} : normal;
    };
    const Color text = colorNamed("text", look.appearance);
    return {{part.highLow->high, font(10, Weight::Semibold), text},
            {"/", font(8, Weight::Regular), colorNamed("subtext", look.appearance)},
            {part.highLow->low, font(9, Weight::Regular), text}};
}

Layout layOut(const Graphics& graphics, const CoinPart& part, const std::optional<std::string>& badge,
              const Look& look) {
    Layout layout;
    const bool isCompact = part.change && part.highLow;
    const Row price{{part.price, Font{.size = part.reference ? 12.0 : 14.0, .weight = Weight::Bold},
                     colorNamed("text", look.appearance)}};
    const Row reference{{part.reference.value_or(""), Font{.size = 11}, colorNamed("ref", look.appearance)}};
    const Row change = changeRow(part, look, isCompact);
    const Row highLow = highLowRow(part, look, isCompact);

    const Size priceSize = sizeOf(graphics, price);
    const double priceWidth =
        part.reference ? std::max(priceSize.width, sizeOf(graphics, reference).width) : priceSize.width;
    const double extraWidth = std::max(sizeOf(graphics, change).width, sizeOf(graphics, highLow).width);

    double headWidth = kIconSize;
    if (badge) {
        const Size text = graphics.measure(*badge, kBadgeFont);
        headWidth = std::max(kIconSize, text.width + 10);
        layout.badgeOrigin = {(headWidth - text.width) / 2 + kPillPadding, (kIconSize - text.height) / 2 + 4};
    }
    layout.head = {kPillPadding, badge ? 4.0 : 2.0, headWidth, kIconSize};

    double x = headWidth + 2 * kGap;
    if (part.reference) {
        place(graphics, price, {x, 8}, layout.texts);
        place(graphics, reference, {x, -2}, layout.texts);
    } else {
        place(graphics, price, {x, centered(priceSize.height) - 2}, layout.texts);
    }
    x += priceWidth;
    if (extraWidth > 0) {
        x += kGap;
        if (isCompact) {
            place(graphics, change, {x, 10}, layout.texts);
            place(graphics, highLow, {x, 0}, layout.texts);
        } else {
            const Row& only = part.change ? change : highLow;
            place(graphics, only, {x, centered(sizeOf(graphics, only).height) - 2}, layout.texts);
        }
        x += extraWidth;
    }
    if (part.showsSparkline) {
        layout.sparkline = {x + 3, 4, kSparklineWidth, 14};
        x = layout.sparkline->right();
    }
    layout.width = std::max(kLeastWidth, x + kPillPadding);
    return layout;
}

std::vector<Point> sparklinePoints(std::span<const double> values, const Rect& rect) {
    std::vector<double> finite;
    std::ranges::copy_if(values, std::back_inserter(finite), [](double value) { return std::isfinite(value); });
    if (finite.size() < 2) {
        return {};
    }
    const auto [low, high] = std::ranges::minmax(finite);
    // Halves, or the range of two huge values of opposite sign would be infinite.
    const double range = high / 2 - low / 2;
    std::vector<Point> points;
    for (std::size_t k = 0; k < finite.size(); ++k) {
        const double share = range > 0 ? (finite[k] / 2 - low / 2) / range : 0;
        points.push_back({rect.x + static_cast<double>(k) * rect.width / static_cast<double>(finite.size() - 1),
                          rect.y + share * rect.height});
    }
    return points;
}

}  // namespace

std::string badgeText(std::string_view displayName) {
    static constexpr std::size_t kMostBytes = 512;
    if (displayName.size() > kMostBytes) {
        std::size_t end = kMostBytes;
        while (end > 0 && (static_cast<unsigned char>(displayName[end]) & 0xc0) == 0x80) {
            --end;
        }
        displayName = displayName.substr(0, end);
    }
    return text::oneLine(text::upper(text::trimmed(text::firstCharacters(displayName, 8))));
}

platform::ImagePtr renderCoinPill(const Graphics& graphics, const CoinPart& part, const platform::ImagePtr& icon,
                                  const Look& look) {
    const auto badge = icon ? std::nullopt : std::optional(badgeText(part.coin.displayName));
    const Layout layout = layOut(graphics, part, badge, look);
    return drawPill(graphics, look, layout.width, [&](platform::Canvas& canvas) {
        if (icon) {
            canvas.drawImage(*icon, layout.head, 1);
        } else {
            canvas.fillRounded(layout.head, layout.head.height / 2, systemColor(SystemColor::Blue, look.appearance));
            canvas.drawText(*badge, layout.badgeOrigin, kBadgeFont, Color::white(1));
        }
        for (const auto& [text, origin] : layout.texts) {
            canvas.drawText(text.text, origin, text.font, text.color);
        }
        if (layout.sparkline) {
            if (const auto points = sparklinePoints(*part.quote.sparkline, *layout.sparkline); !points.empty()) {
                const bool hasFallen = part.quote.change24h.value_or(0) < 0;
                canvas.strokeLine(points, colorNamed(hasFallen ? "red" : "green", look.appearance).withAlpha(0.8), 1.5);
            }
        }
    });
}

}  // namespace glintar::menubar
