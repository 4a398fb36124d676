// What pills and the countdown say by their colours and sizes (tests/pictures/ knows what stands where), which pills
// are kept, and what may happen while they are drawn.

#include "menubar/Badge.h"
#include "menubar/CoinPill.h"
#include "menubar/GasPill.h"
#include "menubar/PillColors.h"
#include "menubar/PillPainter.h"
#include "menubar/ProgressImage.h"
#include "menubar/StatusItemsTest.h"
#include "presenter/SystemColors.h"

#include <cmath>

namespace glintar::menubar {
namespace {

using platform::Appearance;
using testing::ElementsAre;
using Kind = platform::Drawn::Kind;

const platform::VirtualGraphics graphics;
const platform::ImagePtr icon = *graphics.decode("image 64x64 btc");
constexpr Look kLight;
constexpr Look kDark{.appearance = Appearance::Dark, .scale = 2};

platform::VirtualImage drawCoin(const presenter::CoinPart& part) {
    return platform::drawn(renderCoinPill(graphics, part, icon, kLight));
}

TEST(CoinPillTest, HiddenOrUnknownTheChangeStillTellsTheSparklinesColour) {
    presenter::CoinPart part{.price = "1", .showsSparkline = true};
    part.quote.sparkline = {1, 3, 2};
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

class PillPainterTest : public StatusItemsTest {
protected:
    std::shared_ptr<PillPainter> painter(const std::shared_ptr<CoinIcons>& icons, Appearance appearance) {
        return std::make_shared<PillPainter>(desktop.graphics, icons, Look{.appearance = appearance},
                                             [this] { ++redisplays; });
    }
    presenter::StatusLine line() const {
        return presenter::composeStatusLine(config::Settings::load(machine.preferences), coins, quotes, gas,
                                            presenter::Outcome{.error = error});
    }
    void drawWhileIconsArrive();
};

TEST_F(PillPainterTest, AnIconThatArrivesReplacesTheFinishedPill) {
    add("a", "https://icons.test/a.png");
    machine.http.answer("icons.test", "image 9x9 a");
    show();
    work.run();  // asks for the icon; meanwhile an older one turns up
    saveIconOf("a");
    show();
    work.run();
    machine.runLoop.settle();
    EXPECT_THAT(icons(), ElementsAre("saved"));
    settle();
    EXPECT_THAT(icons(), ElementsAre("a"));
}

TEST_F(PillPainterTest, AWholeLineOfTheWidestUsualPillsIsKept) {
    for (const auto key : {config::kShowChange, config::kShowHighLow, config::kShowSparkline, config::kShowGasFee}) {
        machine.preferences.setBoolean(key, true);
    }
    for (const std::string id : {"a", "b", "c", "d", "e"}) {
        add(id);
        saveIconOf(id);
        coins.back().referencePrice = 100'000;
        quotes[id] = {.price = 123'456.78,
                      .change24h = -12.34,
                      .high24h = 123'456.7,
                      .low24h = 100'000,
                      .sparkline = std::vector{1.0, 2.0}};
    }
    quotes["ethereum"].price = 12'345;
    gas = 123.45;
    EXPECT_EQ(drawingsToShow(), 6);
    EXPECT_EQ(drawingsToShow(), 0);
}

/// Draws five pills, light and dark, with one painter for each that shares the icons, while these arrive.
void PillPainterTest::drawWhileIconsArrive() {
    const auto shown = line();
    const auto draw = [&](PillPainter& with, const presenter::CoinPart& part) {
        return platform::drawn(with.drawPill(with.renderKey(shown, part), part));
    };
    const auto icons = std::make_shared<CoinIcons>(platform, desktop.graphics);
    auto light = painter(icons, Appearance::Light);
    const auto dark = painter(icons, Appearance::Dark);
    for (const auto& part : shown.coins) {
        draw(*light, part);
    }
    machine.advance(1s);  // the answers wait to be decoded
    for (const auto& part : shown.coins) {
        work.async([&, held = light] { draw(*held, part); });
        work.async([&] { draw(*dark, part); });
    }
    light.reset();
    work.runTogether();
    for (const auto& part : shown.coins) {
        EXPECT_EQ(draw(*dark, part).all(platform::Drawn::Kind::Image).size(), 1) << part.coin.apiId;
    }
    machine.advance(1s);
}

TEST_F(PillPainterTest, IconsMayArriveWhileTheLookChanges) {
    machine.directories.cachesFolder.reset();  // the files are for one thread
    machine.http.answer("icons.test", "image 9x9 a");
    for (const std::string id : {"a", "b", "c", "d", "e"}) {
        add(id, "https://icons.test/" + id);
    }
    for (int round = 1; round <= 200; ++round) {
        drawWhileIconsArrive();
        EXPECT_EQ(machine.http.asked("icons.test"), 5 * round) << "neither an icon nor its download was seen";
    }
}

}  // namespace
}  // namespace glintar::menubar
