// Which pills are kept, and what may happen while they are drawn.

#include "config/Settings.h"
#include "menubar/PillPainter.h"
#include "menubar/StatusItemsTest.h"

namespace glintar::menubar {
namespace {

using testing::ElementsAre;

class PillPainterTest : public StatusItemsTest {
protected:
    std::shared_ptr<PillPainter> painter(const std::shared_ptr<CoinIcons>& icons, platform::Appearance appearance) {
        return std::make_shared<PillPainter>(desktop.graphics, icons, Look{.appearance = appearance},
                                             [this] { ++redisplays; });
    }
    presenter::StatusLine line() const {
        return presenter::composeStatusLine(config::Settings::load(machine.preferences), coins, quotes, gas,
                                            presenter::Outcome{.error = error});
    }
    void drawWhileIconsArrive();
};

TEST_F(PillPainterTest, ThePillIsKnownByWhatStandsOnIt) {
    const auto keyIn = [this](platform::Appearance appearance) {
        const auto shown = line();
        return painter(nullptr, appearance)->renderKey(shown, shown.coins.at(0));
    };
    add("bitcoin");
    quotes["bitcoin"] = {.price = 64012.55, .change24h = 1, .high24h = 2, .low24h = 1, .sparkline = std::vector{1.0}};
    machine.preferences.setBoolean("showChange24h", true);
    machine.preferences.setBoolean("showSparkline", true);
    EXPECT_EQ(keyIn(platform::Appearance::Dark), "D_coingecko_bitcoin_64012.55_n_true_false_true");
    coins[0].referencePrice = 60000;
    machine.preferences.setBoolean("showHighLow24h", true);
    machine.preferences.setBoolean("showSparkline", false);
    EXPECT_EQ(keyIn(platform::Appearance::Light), "L_coingecko_bitcoin_64012.55_60000.00_true_true_false");
}

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
    auto light = painter(icons, platform::Appearance::Light);
    const auto dark = painter(icons, platform::Appearance::Dark);
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
