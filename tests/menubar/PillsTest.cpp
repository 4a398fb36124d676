// The pictures: what stands where. All texts are 0.6 of the font's size a character wide and 1.2 of it high.

#include "menubar/Badge.h"
#include "menubar/CoinPill.h"
#include "menubar/GasPill.h"
#include "menubar/PillColors.h"
#include "platform/virtual/VirtualGraphics.h"
#include "presenter/SystemColors.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace glintar::menubar {
namespace {

using platform::Appearance;
using platform::Drawn;
using testing::ElementsAre;
using testing::ElementsAreArray;
using Kind = platform::Drawn::Kind;

const platform::VirtualGraphics graphics;
const platform::ImagePtr icon = *graphics.decode("image 64x64 btc");
constexpr Look kLight;
constexpr Look kDark{.appearance = Appearance::Dark, .scale = 2};

/// A text as "words at x,y in size weight", with "=" after the size for digits of equal width, or an image.
std::string described(const Drawn& it) {
    static constexpr std::array kWeights{"regular", "medium", "semibold", "bold", "black"};
    const auto place = fmt::format("{:.6g},{:.6g}", it.frame.x, it.frame.y);
    if (it.kind == Kind::Image) {
        return fmt::format("{} in {} {:.6g}x{:.6g}", it.text, place, it.frame.width, it.frame.height);
    }
    return fmt::format("{} at {} in {}{} {}", it.text, place, it.font.size,
                       it.font.digits == platform::Font::Digits::EqualWidth ? "=" : "",
                       kWeights.at(std::to_underlying(it.font.weight)));
}
std::vector<std::string> described(const std::vector<Drawn>& operations) {
    std::vector<std::string> all;
    for (const auto& operation : operations) {
        all.push_back(described(operation));
    }
    return all;
}

/// BTC at 64012.55, with what is added.
using Add = void (*)(presenter::CoinPart&);
presenter::CoinPart coinPart(std::initializer_list<Add> additions = {}) {
    presenter::CoinPart part{.price = "64012.55"};
    part.coin.displayName = "Btc";
    for (const auto add : additions) {
        add(part);
    }
    return part;
}
void addReference(presenter::CoinPart& part) {
    part.reference = "60000.00";
}
void addChange(presenter::CoinPart& part) {
    part.quote.change24h = 1.2;
    part.change = "+1.20%";
}
void addHighLow(presenter::CoinPart& part) {
    part.highLow = {"64500.0", "63000.0"};
}
void addSparkline(presenter::CoinPart& part) {
    part.quote.sparkline = {1, 3, 2};
    part.showsSparkline = true;
}

platform::VirtualImage drawCoin(const presenter::CoinPart& part, const platform::ImagePtr& picture = icon,
                                const Look& look = kLight) {
    return platform::drawn(renderCoinPill(graphics, part, picture, look));
}

struct CoinLayout {
    const char* name;
    presenter::CoinPart part;
    double width;  ///< in whole pixels
    std::vector<std::string> texts;
    bool hasIcon = true;
};
class CoinPillTest : public testing::TestWithParam<CoinLayout> {};

TEST_P(CoinPillTest, EveryPartHasItsPlace) {
    const auto& [name, part, width, texts, hasIcon] = GetParam();
    const auto pill = drawCoin(part, hasIcon ? icon : nullptr);
    EXPECT_EQ(pill.size(), (platform::Size{width, 24}));
    EXPECT_THAT(described(pill.all(Kind::Text)), ElementsAreArray(texts));
}

const std::string kPrice = "64012.55 at 30,1.6 in 14= bold";
const std::string kSmallPrice = "64012.55 at 30,8 in 12= bold";

INSTANTIATE_TEST_SUITE_P(
    Layouts, CoinPillTest,
    testing::Values(
        CoinLayout{"Price", coinPart(), 104, {kPrice}},
        CoinLayout{
            "NoPrice", coinPart({[](presenter::CoinPart& part) { part.price = ""; }}), 40, {" at 30,1.6 in 14= bold"}},
        CoinLayout{"Badge", coinPart(), 114, {"BTC at 11,7 in 10= bold", "64012.55 at 40,1.6 in 14= bold"}, false},
        CoinLayout{"NarrowBadge",
                   coinPart({[](presenter::CoinPart& part) { part.coin.displayName = "x"; }}),
                   104,
                   {"X at 12,7 in 10= bold", kPrice},
                   false},
        CoinLayout{"Reference", coinPart({addReference}), 94, {kSmallPrice, "60000.00 at 30,-2 in 11= regular"}},
        CoinLayout{"WideReference",
                   coinPart({[](presenter::CoinPart& part) { part.reference = "1600000.00"; }, addChange}),
                   155,
                   {kSmallPrice, "1600000.00 at 30,-2 in 11= regular", "+1.20% at 102,2.2 in 13= regular"}},
        CoinLayout{"Change", coinPart({addChange}), 156, {kPrice, "+1.20% at 103.2,2.2 in 13= regular"}},
        CoinLayout{"HighLow",
                   coinPart({addHighLow}),
                   218,
                   {kPrice, "64500.0 at 103.2,2.8 in 12= medium", "/ at 153.6,2.8 in 12= medium",
                    "63000.0 at 160.8,2.8 in 12= medium"}},
        // The small texts stand on the base line of the largest.
        CoinLayout{"Compact",
                   coinPart({addChange, addHighLow, addSparkline}),
                   233,
                   {kPrice, "+1.20% at 103.2,10 in 11= regular", "64500.0 at 103.2,0 in 10 semibold",
                    "/ at 145.2,0.482 in 8 regular", "63000.0 at 150,0.241 in 9 regular"}},
        CoinLayout{"OneValue",
                   coinPart({addSparkline, [](presenter::CoinPart& part) { part.quote.sparkline = {1}; }}),
                   143,
                   {kPrice}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CoinPillTest, ColoursSayWhichWayItWent) {
    auto part = coinPart({addChange, addSparkline});
    for (const auto& look : {kLight, kDark}) {
        const auto named = [&](const char* name) { return colorNamed(name, look.appearance); };
        for (const auto& [change, color] : {std::pair{-2.5, "red"}, {0.0, "green"}}) {
            part.change = presenter::changeText(change);
            part.quote.change24h = change;
            const auto pill = drawCoin(part, icon, look);
            EXPECT_EQ(pill.text(*part.change).color, named(color)) << change;
            EXPECT_EQ(pill.all(Kind::Line).at(0).color, named(color).withAlpha(0.8)) << change;
        }
    }
    // Hidden or unknown, the change still tells the sparkline's colour.
    part.change.reset();
    for (const auto& [change, color] : {std::pair{std::optional(-1.0), "red"}, {std::nullopt, "green"}}) {
        part.quote.change24h = change;
        EXPECT_EQ(drawCoin(part).all(Kind::Line).at(0).color, colorNamed(color, kLight.appearance).withAlpha(0.8));
    }
}

TEST(CoinPillTest, PillsStayOfReasonableSize) {
    auto part = coinPart();
    for (const double price : {-1e300, 1e300, 1e15}) {
        part.price = presenter::priceText(price);
        const auto width = drawCoin(part).size().width;
        EXPECT_LE(width, kWidestPill) << price;
        EXPECT_GT(width, 180) << price;
    }
    part.price = part.change.emplace(1000, '9');
    part.highLow = {*part.change, *part.change};
    EXPECT_EQ(drawCoin(part).size().width, 640);
}

TEST(BadgeTest, ItHoldsEightCharactersAsPeopleCountThem) {
    for (const auto& [name, badge] : {
             std::pair<std::string, std::string>{"bitcoincash", "BITCOINC"},
             {"", ""},
             {"straße", "STRASSE"},
             {"a\nb", "A\uFFFDB"},
             {"👨‍👩‍👧‍👦123456789", "👨‍👩‍👧‍👦1234567"},
             {"بيتكوين كاش", "بيتكوين"},
             {"e\u030123456789", "E\u03012345678"},
             {std::string(1000, 'x'), "XXXXXXXX"},
         }) {
        EXPECT_EQ(badgeText(name), badge);
    }
    std::string marks = "a";
    for (int i = 0; i < 1000; ++i) {
        marks += "\u0301";
    }
    EXPECT_LE(badgeText(marks).size(), 1536) << "one character, but of a thousand marks";
    EXPECT_FALSE(badgeText(marks).contains("\uFFFD")) << "cut between two of them";
}

TEST(GasPillTest, TheSymbolStandsBeforeTheFee) {
    platform::VirtualGraphics bare;
    bare.missingSymbols = {"fuelpump.fill"};
    const presenter::GasPart gas{.network = market::GasNetwork::Ethereum, .fee = 10, .text = "10G ($0.525)"};
    const presenter::GasPart bitcoin{.network = market::GasNetwork::Bitcoin, .fee = 7, .text = "7 sat"};
    const auto drawGas = [](const presenter::GasPart& part, const platform::Graphics& with = graphics) {
        auto operations = platform::drawn(renderGasPill(with, part, kLight)).operations;
        operations.erase(operations.begin(), operations.begin() + 2);  // the plate and its rim
        return described(operations);
    };
    EXPECT_THAT(drawGas(gas), ElementsAre("fuelpump.fill in 6,4.5 13x13", "10G ($0.525) at 23,3.4 in 11= bold"));
    EXPECT_EQ(drawGas(bitcoin).at(0), "bitcoinsign.circle.fill in 6,4.5 13x13");
    EXPECT_EQ(drawGas(gas, bare).at(0), "10G ($0.525) at 24,3.4 in 11= bold") << "its place is kept";
}

TEST(GasPillTest, TheColourSaysHowDearItIs) {
    for (const auto& [fee, color] : {std::pair{19.99, presenter::SystemColor::Green},
                                     {20.0, presenter::SystemColor::Orange},
                                     {49.99, presenter::SystemColor::Orange},
                                     {50.0, presenter::SystemColor::Red}}) {
        const presenter::GasPart gas{.network = market::GasNetwork::Ethereum, .fee = fee, .text = "fee"};
        const auto pill = platform::drawn(renderGasPill(graphics, gas, kDark));
        EXPECT_EQ(pill.text("fee").color, presenter::systemColor(color, Appearance::Dark)) << fee;
        EXPECT_EQ(pill.all(Kind::Image).at(0).image->operations.at(0).color, pill.text("fee").color) << fee;
    }
}

}  // namespace
}  // namespace glintar::menubar
