// What pills and the countdown say by their colours and sizes; tests/pictures/ knows what stands where.

#include "menubar/Badge.h"
#include "menubar/CoinPill.h"
#include "menubar/GasPill.h"
#include "menubar/PillColors.h"
#include "menubar/ProgressImage.h"
#include "platform/virtual/VirtualGraphics.h"
#include "presenter/SystemColors.h"

#include <gtest/gtest.h>

#include <cmath>

namespace glintar::menubar {
namespace {

using platform::Appearance;
using Kind = platform::Drawn::Kind;

const platform::VirtualGraphics graphics;
const platform::ImagePtr icon = *graphics.decode("image 64x64 btc");
constexpr Look kLight;
constexpr Look kDark{.appearance = Appearance::Dark, .scale = 2};

platform::VirtualImage drawCoin(const presenter::CoinPart& part, const platform::ImagePtr& picture = icon,
                                const Look& look = kLight) {
    return platform::drawn(renderCoinPill(graphics, part, picture, look));
}

TEST(CoinPillTest, ColoursSayWhichWayItWent) {
    presenter::CoinPart part{.price = "1", .showsSparkline = true};
    part.quote.sparkline = {1, 3, 2};
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
    presenter::CoinPart part;
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

TEST(GasPillTest, AMissingSymbolKeepsItsPlace) {
    platform::VirtualGraphics bare;
    bare.missingSymbols = {"fuelpump.fill"};
    const presenter::GasPart gas{.network = market::GasNetwork::Ethereum, .fee = 10, .text = "10G"};
    EXPECT_EQ(platform::drawn(renderGasPill(bare, gas, kLight)).text("10G").frame.x, 24);
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

TEST(ProgressImageTest, AnyNumberAndNoIconCanBeDrawn) {
    EXPECT_EQ(platform::drawn(renderProgressImage(graphics, icon, std::nan(""), 1)).all(Kind::Pie).at(0).arc.sweep, 0);
    EXPECT_EQ(platform::drawn(renderProgressImage(graphics, nullptr, 1, 1)).operations.size(), 1);
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

}  // namespace
}  // namespace glintar::menubar
