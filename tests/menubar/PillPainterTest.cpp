// Which pills are kept, and what may happen while they are drawn.

#include "config/Settings.h"
#include "menubar/PillPainter.h"
#include "menubar/StatusItemsTest.h"

#include <mutex>

namespace glintar::menubar {
namespace {

using testing::ElementsAre;

/// Takes posts from any thread, and nothing else.
class SharedLoop final : public platform::RunLoop {
public:
    explicit SharedLoop(platform::RunLoop& loop) : loop_(loop) {}
    void post(platform::Task task) override {
        const std::lock_guard lock(mutex_);
        loop_.post(std::move(task));
    }
    void postAfter(platform::Duration, platform::Task) override {}
    platform::TimerHandle after(platform::Duration, platform::Task) override { return {}; }
    platform::TimerHandle every(platform::Duration, std::function<void()>) override { return {}; }
    platform::Instant now() const override { return {}; }
    platform::BootInstant bootNow() const override { return {}; }
    platform::WallTime wallNow() const override { return {}; }

private:
    std::mutex mutex_;
    platform::RunLoop& loop_;
};

class PillPainterTest : public StatusItemsTest {
protected:
    std::shared_ptr<PillPainter> painter(const std::shared_ptr<CoinIcons>& icons, platform::Appearance appearance) {
        return std::make_shared<PillPainter>(desktop.graphics, icons, Look{.appearance = appearance},
                                             [this] { ++redisplays; });
    }
    StatusLine line() const { return composeStatusLine(machine.preferences, coins, quotes, gas, error); }
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

TEST_F(PillPainterTest, IconsMayArriveWhileTheLookChanges) {
    SharedLoop loop(machine.runLoop);
    machine.directories.cachesFolder.reset();  // the files are for one thread
    platform::Platform threaded{loop,
                                work,
                                machine.http,
                                machine.preferences,
                                machine.secrets,
                                machine.notifications,
                                machine.directories,
                                machine.bundle,
                                machine.files,
                                machine.console,
                                machine.entropy,
                                machine.localTime,
                                machine.registry};
    machine.http.answer("icons.test", "image 9x9 a");
    for (const std::string id : {"a", "b", "c", "d", "e"}) {
        add(id, "https://icons.test/" + id);
    }
    const auto shown = line();
    const auto draw = [&](PillPainter& with, const CoinPart& part) {
        return platform::drawn(with.drawPill(with.renderKey(shown, part), part));
    };
    for (int round = 1; round <= 200; ++round) {
        const auto icons = std::make_shared<CoinIcons>(threaded, desktop.graphics);
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
        EXPECT_EQ(machine.http.asked("icons.test"), 5 * round) << "neither an icon nor its download was seen";
        for (const auto& part : shown.coins) {
            EXPECT_EQ(draw(*dark, part).all(platform::Drawn::Kind::Image).size(), 1) << part.coin.apiId;
        }
        machine.advance(1s);
    }
}

TEST_F(StatusItemsTest, QuittingMayDestroyTheItems) {
    std::string said;
    items.reset();
    desktop.statusBar.items.clear();
    const std::string farewell = "longer than what a text holds without memory of its own";
    items.emplace(platform, desktop.desktop(),
                  StatusItems::Callbacks{.redisplay = [] {},
                                         .quit =
                                             [this, &said, farewell] {
                                                 items.reset();
                                                 said = farewell;
                                             }});
    const auto quit = anchor().menu.back().action;
    quit();
    EXPECT_EQ(said, farewell);
}

}  // namespace
}  // namespace glintar::menubar
