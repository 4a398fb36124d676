// The pictures: what stands where. All texts are 0.6 of the font's size a character wide and 1.2 of it high.

#include "menubar/CoinPill.h"
#include "menubar/GasPill.h"
#include "menubar/PillColors.h"
#include "menubar/ProgressImage.h"
#include "platform/virtual/VirtualGraphics.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace glintar::menubar {
namespace {

using platform::Appearance;
using platform::Color;
using platform::Drawn;
using platform::Rect;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = platform::Drawn::Kind;

const platform::VirtualGraphics graphics;
const platform::ImagePtr icon = *graphics.decode("image 64x64 btc");
constexpr Look kLight;
constexpr Look kDark{.appearance = Appearance::Dark, .scale = 2};

/// BTC at 64012.55, with what is added.
CoinPart coinPart(const std::function<void(CoinPart&)>& add = [](CoinPart&) {}) {
    CoinPart part{.price = "64012.55"};
    part.coin.displayName = "Btc";
    add(part);
    return part;
}
void addReference(CoinPart& part) {
    part.reference = "60000.00";
}
void addChange(CoinPart& part) {
    part.quote.change24h = 1.2;
    part.change = "+1.20%";
}
void addHighLow(CoinPart& part) {
    part.highLow = {"64500.0", "63000.0"};
}
void addSparkline(CoinPart& part) {
    part.quote.sparkline = {1, 3, 2};
    part.showsSparkline = true;
}

platform::VirtualImage drawCoin(const CoinPart& part, const platform::ImagePtr& picture = icon,
                                const Look& look = kLight) {
    return platform::drawn(renderCoinPill(graphics, part, picture, look));
}

struct PlacedText {
    std::string text;
    double x, y, fontSize;
};
struct CoinLayout {
    const char* name;
    CoinPart part;
    double width;
    std::vector<PlacedText> texts;
    bool hasIcon = true;
};
class CoinPillTest : public testing::TestWithParam<CoinLayout> {};

TEST_P(CoinPillTest, EveryPartHasItsPlace) {
    const auto& [name, part, width, texts, hasIcon] = GetParam();
    const auto pill = drawCoin(part, hasIcon ? icon : nullptr);
    EXPECT_EQ(pill.size().width, std::ceil(width)) << "in whole pixels";
    EXPECT_EQ(pill.size().height, 24);
    EXPECT_THAT(pill.all(Kind::Text), SizeIs(texts.size()));
    for (const auto& expected : texts) {
        const auto& text = pill.text(expected.text);
        EXPECT_NEAR(text.frame.x, expected.x, 1e-9) << expected.text;
        EXPECT_NEAR(text.frame.y, expected.y, 1e-9) << expected.text;
        EXPECT_EQ(text.font.size, expected.fontSize) << expected.text;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, CoinPillTest,
    testing::Values(
        CoinLayout{"Price", coinPart(), 103.2, {{"64012.55", 30, 1.6, 14}}},
        CoinLayout{"Badge", coinPart(), 113.2, {{"BTC", 11, 7, 10}, {"64012.55", 40, 1.6, 14}}, false},
        CoinLayout{"NarrowBadge",
                   coinPart([](CoinPart& part) { part.coin.displayName = "x"; }),
                   103.2,
                   {{"X", 12, 7, 10}, {"64012.55", 30, 1.6, 14}},
                   false},
        CoinLayout{"Reference", coinPart(addReference), 93.6, {{"64012.55", 30, 8, 12}, {"60000.00", 30, -2, 11}}},
        CoinLayout{"WideReference",
                   coinPart([](CoinPart& part) {
                       part.reference = "1600000.00";
                       addChange(part);
                   }),
                   154.8,
                   {{"64012.55", 30, 8, 12}, {"1600000.00", 30, -2, 11}, {"+1.20%", 102, 2.2, 13}}},
        CoinLayout{"Change", coinPart(addChange), 156, {{"64012.55", 30, 1.6, 14}, {"+1.20%", 103.2, 2.2, 13}}},
        CoinLayout{"HighLow",
                   coinPart(addHighLow),
                   217.2,
                   {{"64012.55", 30, 1.6, 14},
                    {"64500.0", 103.2, 2.8, 12},
                    {"/", 153.6, 2.8, 12},
                    {"63000.0", 160.8, 2.8, 12}}},
        // The small texts stand on the base line of the largest.
        CoinLayout{"Compact",
                   coinPart([](CoinPart& part) {
                       addChange(part);
                       addHighLow(part);
                       addSparkline(part);
                   }),
                   232.8,
                   {{"64012.55", 30, 1.6, 14},
                    {"+1.20%", 103.2, 10, 11},
                    {"64500.0", 103.2, 0, 10},
                    {"/", 145.2, 0.482, 8},
                    {"63000.0", 150, 0.241, 9}}},
        CoinLayout{"OneValue",
                   coinPart([](CoinPart& part) {
                       addSparkline(part);
                       part.quote.sparkline = {1};
                   }),
                   142.2,
                   {{"64012.55", 30, 1.6, 14}}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CoinPillTest, PlateIconAndBadgeLieBehindTheTexts) {
    const auto pill = drawCoin(coinPart(), icon, kDark);
    EXPECT_EQ(pill.scale, 2);
    ASSERT_THAT(pill.operations, SizeIs(4));
    EXPECT_EQ(pill.operations[0].kind, Kind::Fill);
    EXPECT_EQ(pill.operations[0].frame, (Rect{0.5, 0, pill.size().width - 1, 22}));
    EXPECT_EQ(pill.operations[0].radius, 4);
    EXPECT_EQ(pill.operations[0].color, Color::white(0.15));
    EXPECT_EQ(pill.operations[1].kind, Kind::Stroke);
    EXPECT_EQ(pill.operations[1].color, Color::white(0.3));
    EXPECT_EQ(pill.operations[2].text, "btc");
    EXPECT_EQ(pill.operations[2].frame, (Rect{6, 2, 18, 18}));

    const auto badge = drawCoin(coinPart(), nullptr);
    EXPECT_EQ(badge.operations[0].color, Color::white(0.9));
    EXPECT_EQ(badge.operations[1].color, Color::white(0.6));
    EXPECT_EQ(badge.operations[2].frame, (Rect{6, 4, 28, 18}));
    EXPECT_EQ(badge.operations[2].radius, 9);
    EXPECT_EQ(badge.text("BTC").color, Color::white(1));
}

TEST(CoinPillTest, ColoursSayWhichWayItWent) {
    const auto part = [](double change) {
        return coinPart([&](CoinPart& made) {
            addReference(made);
            addHighLow(made);
            addSparkline(made);
            made.change = changeText(change);
            made.quote.change24h = change;
        });
    };
    const auto fallen = drawCoin(part(-2.5));
    EXPECT_EQ(fallen.text("-2.50%").color, (Color{0.85, 0, 0}));
    EXPECT_EQ(fallen.all(Kind::Line).at(0).color, (Color{0.85, 0, 0, 0.8}));
    EXPECT_EQ(fallen.text("/").color, Color::white(0.5));
    EXPECT_EQ(fallen.text("64500.0").color, Color::white(0.1));
    const auto same = drawCoin(part(0), icon, kDark);
    EXPECT_EQ(same.text("+0.00%").color, (Color{0.2, 0.85, 0.3}));
    EXPECT_EQ(same.all(Kind::Line).at(0).color, (Color{0.2, 0.85, 0.3, 0.8}));
    EXPECT_EQ(same.text("60000.00").color, (Color{1, 0.7, 0.2}));
    EXPECT_EQ(same.text("64012.55").color, Color::white(1));
    // Hidden or unknown, the change still tells the sparkline's colour.
    auto quiet = part(-1);
    quiet.change.reset();
    EXPECT_EQ(drawCoin(quiet).all(Kind::Line).at(0).color, (Color{0.85, 0, 0, 0.8}));
    quiet.quote.change24h.reset();
    EXPECT_EQ(drawCoin(quiet).all(Kind::Line).at(0).color, (Color{0, 0.6, 0, 0.8}));
}

TEST(CoinPillTest, SparklinesStayInsideTheirRectangleWhateverTheValues) {
    constexpr double kMost = std::numeric_limits<double>::max();
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const auto pointsOf = [](std::vector<double> values) {
        const auto lines = drawCoin(coinPart([&](CoinPart& part) {
                               part.showsSparkline = true;
                               part.quote.sparkline = std::move(values);
                           })).all(Kind::Line);
        std::vector<std::string> points;
        for (const auto& [x, y] : lines.empty() ? std::vector<platform::Point>{} : lines[0].points) {
            points.push_back(fmt::format("{:.1f},{:.1f}", x, y));
        }
        return points;
    };
    EXPECT_THAT(pointsOf({1, 3, 2}), ElementsAre("100.2,4.0", "118.2,18.0", "136.2,11.0"));
    EXPECT_THAT(pointsOf({5, 5}), ElementsAre("100.2,4.0", "136.2,4.0")) << "flat, at the bottom";
    EXPECT_THAT(pointsOf({-kMost, kMost}), ElementsAre("100.2,4.0", "136.2,18.0"));
    EXPECT_THAT(pointsOf({kNone, 1, kInfinite, 2, -kInfinite}), ElementsAre("100.2,4.0", "136.2,18.0"));
    EXPECT_THAT(pointsOf({kNone, 1}), IsEmpty());
}

TEST(CoinPillTest, PillsStayOfReasonableSize) {
    for (const double price : {-1e300, 1e300, 1e15}) {
        const auto width = drawCoin(coinPart([&](CoinPart& part) { part.price = priceText(price); })).size().width;
        EXPECT_LE(width, 640) << price;
        EXPECT_GT(width, 180) << price;
    }
    const auto everything = coinPart([](CoinPart& part) {
        part.price = part.change.emplace(1000, '9');
        part.highLow = {*part.change, *part.change};
    });
    EXPECT_EQ(drawCoin(everything).size().width, 640);
}

TEST(CoinPillTest, TheBadgeHoldsEightCharactersAsPeopleCountThem) {
    EXPECT_EQ(badgeText("bitcoincash"), "BITCOINC");
    EXPECT_EQ(badgeText(""), "");
    EXPECT_EQ(badgeText("straße"), "STRASSE");
    EXPECT_EQ(badgeText("a\nb"), "A\uFFFDB");
    const std::string family = "👨‍👩‍👧‍👦";
    EXPECT_EQ(badgeText(family + "123456789"), family + "1234567");
    EXPECT_EQ(badgeText("بيتكوين كاش"), "بيتكوين");
    const std::string accented = "e\u0301";
    EXPECT_EQ(badgeText(accented + "2345678" + "9"), "E\u03012345678");
    std::string marks = "a";
    for (int i = 0; i < 1000; ++i) {
        marks += "\u0301";
    }
    EXPECT_LE(badgeText(marks).size(), 1536) << "one character, but of a thousand marks";
    EXPECT_FALSE(badgeText(marks).contains("\uFFFD")) << "cut between two of them";
    EXPECT_EQ(badgeText(std::string(1000, 'x')), "XXXXXXXX");
}

TEST(GasPillTest, TheSymbolStandsBeforeTheFee) {
    const GasPart gas{.network = market::GasNetwork::Ethereum, .fee = 10, .text = "10G ($0.525)"};
    const auto pill = platform::drawn(renderGasPill(graphics, gas, kLight));
    EXPECT_EQ(pill.size().width, 109);  // 108.2 in whole pixels
    EXPECT_EQ(pill.all(Kind::Image).at(0).text, "fuelpump.fill");
    EXPECT_EQ(pill.all(Kind::Image).at(0).frame, (Rect{6, 4.5, 13, 13}));
    EXPECT_EQ(pill.text(gas.text).frame.x, 23);
    EXPECT_NEAR(pill.text(gas.text).frame.y, 3.4, 1e-9);
    EXPECT_EQ(pill.all(Kind::Stroke).at(0).frame.height, 22);

    const GasPart bitcoin{.network = market::GasNetwork::Bitcoin, .fee = 7, .text = "7 sat"};
    EXPECT_EQ(platform::drawn(renderGasPill(graphics, bitcoin, kLight)).all(Kind::Image).at(0).text,
              "bitcoinsign.circle.fill");
    platform::VirtualGraphics bare;
    bare.missingSymbols = {"fuelpump.fill"};
    const auto without = platform::drawn(renderGasPill(bare, gas, kLight));
    EXPECT_THAT(without.all(Kind::Image), IsEmpty());
    EXPECT_EQ(without.text(gas.text).frame.x, 24) << "its place is kept";
}

TEST(GasPillTest, TheColourSaysHowDearItIs) {
    for (const auto& [fee, color] : {std::pair{19.99, SystemColor::Green},
                                     {20.0, SystemColor::Orange},
                                     {49.99, SystemColor::Orange},
                                     {50.0, SystemColor::Red}}) {
        const GasPart gas{.network = market::GasNetwork::Ethereum, .fee = fee, .text = "fee"};
        EXPECT_EQ(platform::drawn(renderGasPill(graphics, gas, kDark)).text("fee").color,
                  systemColor(color, Appearance::Dark))
            << fee;
    }
}

TEST(ProgressImageTest, TheBrightPartGrowsClockwiseFromTwelve) {
    const auto picture = platform::drawn(renderProgressImage(graphics, icon, 0.25, 2));
    EXPECT_EQ(picture.size(), (platform::Size{28, 21}));
    ASSERT_THAT(picture.operations, SizeIs(3));
    const auto &dim = picture.operations[0], &pie = picture.operations[1], &ring = picture.operations[2];
    EXPECT_EQ(dim.frame, (Rect{0, 0, 21, 21}));
    EXPECT_EQ(dim.opacity, 0.3);
    EXPECT_EQ(pie.frame, dim.frame);
    EXPECT_EQ(pie.arc, (platform::Canvas::Arc{{10.5, 10.5}, 15, 90, -90}));
    EXPECT_EQ(ring.arc, (platform::Canvas::Arc{{10.5, 10.5}, 10, 0, 360}));
    EXPECT_EQ(ring.color, Color::white(0.2, 0.8));
    EXPECT_EQ(ring.lineWidth, 1);
    EXPECT_EQ(platform::drawn(renderProgressImage(graphics, icon, std::nan(""), 1)).all(Kind::Pie).at(0).arc.sweep, 0);
    EXPECT_THAT(platform::drawn(renderProgressImage(graphics, nullptr, 1, 1)).operations, SizeIs(1));
}

/// Pictures and calls of one countdown, by a caller who comes when he was told to.
struct Count {
    int pictures = 0, calls = 0;
};
Count countDown(platform::Seconds interval, const Look& look) {
    Countdown countdown(graphics);
    Count count;
    for (platform::Seconds passed{}; passed <= interval && count.calls < 1000; ++count.calls) {
        count.pictures += countdown.pictureAt(passed / interval, "coingecko", look) ? 1 : 0;
        passed += Countdown::unchangedFor(passed / interval, interval, look.scale);
    }
    return count;
}

TEST(CountdownTest, ItIsDrawnOncePerHalfPixelAndNobodyNeedAskInBetween) {
    using platform::Seconds;
    // 21 points of diameter: 66 pixels around, 132 halves and the start.
    for (const double interval : {60.0, 30.0}) {
        EXPECT_EQ(countDown(Seconds{interval}, kLight).pictures, 133);
        EXPECT_EQ(countDown(Seconds{interval}, kLight).calls, 133);
    }
    EXPECT_EQ(countDown(Seconds{60}, kDark).pictures, 265);
    EXPECT_NEAR(Countdown::unchangedFor(0, Seconds{60}, 1).count(), 60.0 / 132, 1e-9);
    EXPECT_NEAR(Countdown::unchangedFor(1.75 / 132, Seconds{60}, 1).count(), 0.25 * 60 / 132, 1e-9);
    EXPECT_NEAR(Countdown::unchangedFor(1, Seconds{60}, 1).count(), 60.0 / 132, 1e-9) << "the end must not spin";
    EXPECT_GT(Countdown::unchangedFor(0.5, Seconds{0}, 1).count(), 0);
}

TEST(CountdownTest, ItIsDrawnAgainWhenSourceOrLookChange) {
    Countdown countdown(graphics);
    const auto imageAt = [&](double elapsed, std::string_view source, const Look& look) -> std::string {
        const auto picture = countdown.pictureAt(elapsed, source, look);
        return picture ? platform::drawn(picture).all(Kind::Image).at(0).text : "";
    };
    EXPECT_EQ(imageAt(0.5, "coingecko", kLight), "coingecko");
    EXPECT_EQ(imageAt(0.5005, "coingecko", kLight), "");
    EXPECT_EQ(imageAt(0.5005, "unheard-of", kLight), "network");
    EXPECT_EQ(imageAt(0.5005, "unheard-of", {.appearance = Appearance::Dark}), "network");
    EXPECT_EQ(imageAt(0.5005, "unheard-of", kDark), "network");
    EXPECT_EQ(imageAt(0.1, "unheard-of", kDark), "network") << "a new countdown";
}

}  // namespace
}  // namespace glintar::menubar
