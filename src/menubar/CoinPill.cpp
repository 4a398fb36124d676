#include "menubar/CoinPill.h"

#include "menubar/Badge.h"
#include "menubar/PillColors.h"
#include "presenter/Sparkline.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace glintar::menubar {

using platform::Color;
using platform::Font;
using platform::Graphics;
using platform::Point;
using platform::Size;
using Weight = platform::Font::Weight;

namespace {

constexpr double kGap = 6;
constexpr double kIconSize = 18;
constexpr double kLeastWidth = 40;

struct Text {
    std::string text;
    Font font;
    Color color;
    Point origin;
};

/// Texts one after the other, on one base line. They are measured here and nowhere else.
struct Row {
    Row() = default;
    Row(const Graphics& graphics, std::vector<Text> parts) : texts(std::move(parts)) {
        const double largest =
            std::ranges::max_element(texts, {}, [](const Text& text) { return text.font.size; })->font.size;
        for (auto& [text, font, color, origin] : texts) {
            // The small texts stand on the line of the largest.
            origin = {size.width, platform::kDescent * (largest - font.size)};
            const Size its = graphics.measure(text, font);
            size = {size.width + its.width, std::max(size.height, its.height)};
        }
    }

    std::vector<Text> texts;  ///< their origins count from the row's bottom left
    Size size;
};

/// What stands where on the pill, but for its icon or badge.
struct Layout {
    double width = 0;
    std::vector<Text> texts;
    std::vector<Point> sparkline;

    void place(const Row& row, const Point& origin) {
        for (const Text& text : row.texts) {
            texts.push_back(text);
            texts.back().origin = {origin.x + text.origin.x, origin.y + text.origin.y};
        }
    }
    void placeInMiddle(const Row& row, double x) { place(row, {x, centered(row.size.height) - 2}); }
};

/// Which way the price went, shown or not.
Color trendColor(const presenter::CoinPart& part, const Look& look) {
    const bool hasFallen = part.quote.change24h.value_or(0) < 0;
    return colorNamed(hasFallen ? "red" : "green", look.appearance);
}

Row highLowRow(const Graphics& graphics, const presenter::HighLowText& range, const Look& look, bool isCompact) {
    struct Fonts {
        Font high, slash, low;
    };
    constexpr Font kNormal{.size = 12, .weight = Weight::Medium};
    constexpr auto kDesigned = Font::Digits::AsDesigned;
    const Fonts fonts =
        isCompact
            ? Fonts{{10, Weight::Semibold, kDesigned}, {8, Weight::Regular, kDesigned}, {9, Weight::Regular, kDesigned}}
            : Fonts{kNormal, kNormal, kNormal};
    const Color text = colorNamed("text", look.appearance);
    return {graphics,
            {{range.high, fonts.high, text},
             {"/", fonts.slash, colorNamed("subtext", look.appearance)},
             {range.low, fonts.low, text}}};
}

/// The price, above the reference price if there is one. The width they take.
double layOutPrice(Layout& layout, const Graphics& graphics, const presenter::CoinPart& part, double x,
                   const Look& look) {
    const Row price(graphics, {{part.price, Font{.size = part.reference ? 12.0 : 14.0, .weight = Weight::Bold},
                                colorNamed("text", look.appearance)}});
    if (!part.reference) {
        layout.placeInMiddle(price, x);
        return price.size.width;
    }
    const Row reference(graphics, {{*part.reference, Font{.size = 11}, colorNamed("ref", look.appearance)}});
    layout.place(price, {x, 8});
    layout.place(reference, {x, -2});
    return std::max(price.size.width, reference.size.width);
}

/// The change and the range of the day: above each other, or the one of them that is there. The width they take.
double layOutDay(Layout& layout, const Graphics& graphics, const presenter::CoinPart& part, double x,
                 const Look& look) {
    const bool isCompact = part.change && part.highLow;
    Row change;
    Row highLow;
    if (part.change) {
        change = Row(graphics, {{*part.change, Font{.size = isCompact ? 11.0 : 13.0}, trendColor(part, look)}});
    }
    if (part.highLow) {
        highLow = highLowRow(graphics, *part.highLow, look, isCompact);
    }
    if (isCompact) {
        layout.place(change, {x, 10});
        layout.place(highLow, {x, 0});
    } else {
        layout.placeInMiddle(part.change ? change : highLow, x);
    }
    return std::max(change.size.width, highLow.size.width);
}

Layout layOut(const Graphics& graphics, const presenter::CoinPart& part, double headWidth, const Look& look) {
    Layout layout;
    double x = kPillPadding + headWidth + kGap;
    x += layOutPrice(layout, graphics, part, x, look);
    if (part.change || part.highLow) {
        x += kGap;
        x += layOutDay(layout, graphics, part, x, look);
    }
    if (part.showsSparkline) {
        const platform::Rect frame{x + 3, 4, 36, 14};
        layout.sparkline = presenter::sparklinePoints(*part.quote.sparkline, frame);
        x = frame.right();
    }
    layout.width = std::max(kLeastWidth, x + kPillPadding);
    return layout;
}

}  // namespace

platform::ImagePtr renderCoinPill(const Graphics& graphics, const presenter::CoinPart& part,
                                  const platform::ImagePtr& icon, const Look& look) {
    const auto badge = icon ? std::nullopt : std::optional<Badge>(std::in_place, graphics, part.coin.displayName);
    const Layout layout = layOut(graphics, part, badge ? badge->width() : kIconSize, look);
    return drawPill(graphics, look, layout.width, [&](platform::Canvas& canvas) {
        if (badge) {
            badge->draw(canvas, {kPillPadding, 4}, look.appearance);
        } else {
            canvas.drawImage(*icon, {kPillPadding, 2, kIconSize, kIconSize}, 1);
        }
        for (const auto& [text, font, color, origin] : layout.texts) {
            canvas.drawText(text, origin, font, color);
        }
        if (!layout.sparkline.empty()) {
            canvas.strokeLine(layout.sparkline, trendColor(part, look).withAlpha(0.8), 1.5);
        }
    });
}

}  // namespace glintar::menubar
