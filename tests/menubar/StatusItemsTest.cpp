// The two items in the status bar, as the user sees them.

#include "menubar/StatusItemsTest.h"

#include "config/Settings.h"
#include "menubar/PillColors.h"
#include "presenter/SystemColors.h"

namespace glintar::menubar {

using platform::Appearance;
using platform::MouseButton;
using platform::Point;
using platform::TextRun;
using testing::ElementsAre;
using Length = platform::StatusItem::Length;

TEST_F(StatusItemsTest, TheBarSaysThatThereIsNothingYet) {
    EXPECT_EQ(anchor().length, Length::Square);
    EXPECT_EQ(anchor().toolTip, "Glintar");
    EXPECT_EQ(anchor().image->size(), (platform::Size{24, 24})) << "a square one in 28 x 24 points";
    EXPECT_EQ(platform::drawn(anchor().image).name, "AppIcon");
    EXPECT_EQ(display().length, Length::Variable);
    EXPECT_EQ(display().toolTip, "Waiting for data...");
    EXPECT_EQ(std::get<TextRun>(display().title.at(0)).text, "Loading...");

    desktop.events.setAppearance(Appearance::Dark);
    EXPECT_EQ(std::get<TextRun>(display().title.at(0)).color, platform::Color::white(1))
        << "seen on a dark bar as well";

    desktop.graphics.images.clear();
    desktop.statusBar.setScale(2);
    EXPECT_EQ(platform::drawn(anchor().image).name, "bitcoinsign.circle.fill");
}

TEST_F(StatusItemsTest, EitherButtonOpensTheMenuOnTheIconAndTheDashboardOnTheLine) {
    auto &anchorState = *desktop.statusBar.items[0], &displayState = *desktop.statusBar.items[1];
    anchorState.frame = {900, 776, 24, 24};
    for (const auto button : {MouseButton::Left, MouseButton::Right}) {
        anchorState.menuShownAt.reset();
        anchorState.item->onMouseUp(button);
        EXPECT_EQ(anchorState.menuShownAt, (Point{-10, -16}));
        displayState.item->onMouseUp(button);
    }
    EXPECT_EQ(done, "line line ");
    EXPECT_EQ(displayState.menuShownAt, std::nullopt);
}

TEST_F(StatusItemsTest, TheMenuSaysWhatCanBeDone) {
    const auto written = [&] {
        std::string text;
        for (const auto& item : anchor().menu) {
            text += item.isSeparator ? "-" : item.title + (item.shortcut ? std::string(" ^") + item.shortcut : "");
            text += item.isEnabled || item.isSeparator ? "\n" : " (off)\n";
        }
        return text;
    };
    EXPECT_EQ(written(),
              "Status: Normal (off)\n-\nArbitrage Dashboard ^d (off)\n-\nSettings ^s (off)\nNetwork Diagnostics\n"
              "Check for Updates... (off)\n-\nQuit ^q\n");
    items->updateDashboardItem("Arbitrage Dashboard", true);
    for (const auto& item : anchor().menu) {
        if (const auto action = item.isEnabled ? item.action : nullptr) {
            action();
        }
    }
    EXPECT_EQ(done, "dashboard diagnostics quit ");
}

TEST_F(StatusItemsTest, PillsStandInTheUsersOrderWhicheverIsFinishedFirst) {
    for (const auto* id : {"a", "b", "c"}) {
        add(id);
    }
    machine.preferences.setBoolean("showGasFee", true);
    gas = 12;
    show("Last Updated: 01:02:03");
    work.runLastFirst();
    settle();
    EXPECT_THAT(descriptions(), ElementsAre("A 1.50", "B 1.50", "C 1.50", "⛽ 12G"));
    EXPECT_EQ(display().description, "A 1.50 | B 1.50 | C 1.50 | ⛽ 12G");
    EXPECT_EQ(display().toolTip, "Last Updated: 01:02:03");
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& words = platform::drawn(pills().at(i)->image);
        EXPECT_EQ(words.all(platform::Drawn::Kind::Text).at(0).text, (std::vector{"A", "B", "C", "12G"}[i]));
        EXPECT_EQ(pills()[i]->offset, (Point{0, -7.5}));
    }
    ASSERT_EQ(display().title.size(), 7);
    for (const std::size_t i : {1, 3, 5}) {
        const auto& separator = std::get<TextRun>(display().title[i]);
        EXPECT_EQ(separator.text, "   ");
        EXPECT_EQ(separator.font.size, 14);
        EXPECT_EQ(separator.color, presenter::systemColor(presenter::SystemColor::TertiaryLabel, Appearance::Light));
    }
}

TEST_F(StatusItemsTest, WordsStandWhereThereIsNoQuote) {
    error = "HTTP 429";
    coins = {test::coin("BTC", "bitcoin")};
    show();
    settle();
    const auto words = [&] { return std::get<TextRun>(display().title.at(0)); };
    EXPECT_EQ(words().text, "⚠️ Limit 429");
    EXPECT_EQ(words().font.size, 12);
    desktop.events.setAppearance(Appearance::Dark);
    settle();
    EXPECT_EQ(words().color, presenter::systemColor(presenter::SystemColor::SecondaryLabel, Appearance::Dark));

    machine.preferences.setBoolean("showGasFee", true);
    gas = 12;
    show();
    settle();
    ASSERT_EQ(display().title.size(), 3);
    EXPECT_EQ(std::get<TextRun>(display().title[1]).text, "   ");
    EXPECT_THAT(descriptions(), ElementsAre("⛽ 12G")) << "the fee has its place all the same";
}

TEST_F(StatusItemsTest, AnEmptyLineTakesNoPlace) {
    add("a");
    show("first");
    settle();
    coins.clear();
    show("second");
    settle();
    EXPECT_EQ(display().length, Length::Collapsed);
    EXPECT_EQ(display().toolTip, "first");
    items->show();
    EXPECT_EQ(display().length, Length::Collapsed) << "it was not hidden";
    EXPECT_FALSE(items->showsProgress());
    add("b");
    show("third");
    EXPECT_TRUE(items->showsProgress()) << "from the first moment";
    settle();
    EXPECT_EQ(display().length, Length::Variable);
    EXPECT_EQ(display().toolTip, "third");
}

TEST_F(StatusItemsTest, WhatHasNotChangedIsNotDrawnAgain) {
    add("a");
    saveIconOf("a");
    machine.preferences.setBoolean("showGasFee", true);
    gas = 12;
    EXPECT_EQ(drawingsToShow(), 2);
    EXPECT_EQ(drawingsToShow(), 0);

    auto& quote = quotes["a"];
    const auto titles = display().titlesSet;
    quote.change24h = 3;
    EXPECT_EQ(drawingsToShow(), 0) << "the change moves along with the price";
    EXPECT_GT(display().titlesSet, titles);
    struct Change {
        const char* what;
        std::function<void()> make;
    };
    for (const auto& [what, change] : {
             Change{"price", [&] { quote.price = 1.6; }},
             Change{"reference", [&] { coins[0].referencePrice = 2; }},
             Change{"change wanted", [&] { machine.preferences.setBoolean("showChange24h", true); }},
             Change{"range wanted", [&] { machine.preferences.setBoolean("showHighLow24h", true); }},
             Change{"sparkline wanted", [&] { machine.preferences.setBoolean("showSparkline", true); }},
             Change{"source", [&] { machine.preferences.setString("selectedSourceID", "binance"); }},
             Change{"fee", [&] { gas = 13; }},
         }) {
        change();
        EXPECT_EQ(drawingsToShow(), 1) << what;
        EXPECT_EQ(drawingsToShow(), 0) << what;
    }
}

TEST_F(StatusItemsTest, AnotherLookRedrawsEverything) {
    add("a");
    add("b");
    saveIconOf("a");
    saveIconOf("b");
    show();
    settle();
    const auto look = [&](std::size_t i) { return platform::drawn(pills().at(i)->image); };
    desktop.events.setAppearance(Appearance::Dark);
    EXPECT_EQ(redisplays, 1);
    settle();
    EXPECT_EQ(look(0).operations[0].color, platform::Color::white(0.15));
    EXPECT_EQ(look(1).operations[0].color, platform::Color::white(0.15));
    desktop.statusBar.setScale(2);
    EXPECT_EQ(redisplays, 2);
    settle();
    EXPECT_EQ(look(0).scale, 2);
    EXPECT_EQ(drawingsToShow(), 0);
}

TEST_F(StatusItemsTest, AnOlderLineNeverReplacesANewerOne) {
    add("a");
    show("old");
    auto old = std::exchange(work.waiting, {});
    quotes["a"].price = 2.5;
    show("new");
    settle();
    old[0]();
    settle();
    EXPECT_THAT(descriptions(), ElementsAre("A 2.50"));
    EXPECT_EQ(display().toolTip, "new");
    EXPECT_EQ(display().titlesSet, 2) << "the first was Loading...";
}

TEST_F(StatusItemsTest, WhatIsHiddenStaysHidden) {
    add("a");
    show();
    items->hide();
    settle();
    EXPECT_FALSE(display().isVisible);
    EXPECT_FALSE(items->showsProgress());
    EXPECT_EQ(display().length, Length::Collapsed);
    quotes.clear();
    desktop.events.setAppearance(Appearance::Dark);
    settle();
    EXPECT_FALSE(display().isVisible);
    items->show();
    EXPECT_TRUE(display().isVisible);
    EXPECT_EQ(display().length, Length::Variable);

    items->hide();
    add("b");
    show();
    settle();
    EXPECT_TRUE(display().isVisible) << "whoever renders wants it seen";
}

TEST_F(StatusItemsTest, WorkThatComesTooLateDoesNothing) {
    add("a", "https://icons.test/a.png");
    machine.http.answer("icons.test", "image 9x9 a");
    show();
    work.run();
    show();
    items.reset();
    settle();
    EXPECT_EQ(redisplays, 0);
    EXPECT_EQ(machine.http.asked("icons.test"), 1) << "what is under way comes to its end";
    EXPECT_EQ(desktop.statusBar.onScaleChanged, nullptr);
    desktop.events.setAppearance(Appearance::Dark);
}

TEST_F(StatusItemsTest, TheCountdownIsReplacedWhenItLooksDifferent) {
    const platform::Seconds unchanged = items->showProgress(0.5, 60s);
    EXPECT_NEAR(unchanged.count(), 60.0 / 132, 1e-9);
    items->showProgress(0.5 + 0.9 / 132, 60s);
    EXPECT_EQ(display().imagesSet, 1);
    machine.preferences.setString("selectedSourceID", "binance");
    add("btc");
    show();
    items->showProgress(0.5, 60s);
    EXPECT_EQ(platform::drawn(display().image).operations.at(0).text, "network");
    desktop.statusBar.setScale(2);
    EXPECT_NEAR(items->showProgress(0.5, 60s).count(), 60.0 / 264, 1e-9);
    EXPECT_EQ(platform::drawn(display().image).scale, 2);
    desktop.events.setAppearance(Appearance::Dark);
    items->showProgress(0.5, 60s);
    EXPECT_EQ(display().imagesSet, 4);
}

TEST_F(StatusItemsTest, QuittingMayDestroyTheItems) {
    std::string said;
    items.reset();
    desktop.statusBar.items.clear();
    const std::string farewell = "longer than what a text holds without memory of its own";
    items.emplace(platform, desktop.desktop(),
                  StatusItems::Callbacks{.redisplay = [] {}, .menu = {.quitApp = [this, &said, farewell] {
                                                                 items.reset();
                                                                 said = farewell;
                                                             }}});
    const auto quit = anchor().menu.back().action;
    quit();
    EXPECT_EQ(said, farewell);
}

}  // namespace glintar::menubar
