#include "PanelFixture.h"

namespace glintar::floating {
namespace {

using FloatingPriceControllerTest = PanelFixture;

TEST_F(FloatingPriceControllerTest, ThePanelFollowsThePointer) {
    ticks(10);
    EXPECT_TRUE(desktop.windows.overlays.empty());
    EXPECT_EQ(desktop.pointer.asked, 0);

    desktop.pointer.at = Point{300, 200};
    controller.showPanel();
    EXPECT_TRUE(window().isShown());
    EXPECT_EQ(topLeft(), (Point{328, 172})) << "it must not flash up elsewhere";
    for (const auto at : {Point{300, 201}, Point{-1500, -3}, Point{5000, 0.5}}) {  // on any screen, or past its edge
        follow(at);
        EXPECT_EQ(topLeft(), (Point{at.x + 28, at.y - 28}));
    }
    const int moves = window().moves;
    ticks(100);
    EXPECT_EQ(window().moves, moves) << "a still pointer moves nothing";
    EXPECT_EQ(desktop.windows.notices.size(), 0U);
}

TEST_F(FloatingPriceControllerTest, ItFadesWhenThePointerRestsAndReturnsAtItsMovement) {
    controller.showPanel();
    follow({10, 10});
    ticks(500);
    EXPECT_EQ(window().alpha(), 1);
    ticks(1);
    EXPECT_DOUBLE_EQ(window().alpha(), 0.95);
    ticks(18);
    EXPECT_NEAR(window().alpha(), 0.05, 1e-9);
    ticks(1);
    EXPECT_EQ(window().alpha(), 0);
    EXPECT_TRUE(window().isShown());

    follow({11, 10});
    EXPECT_EQ(window().alpha(), 1);
    EXPECT_EQ(topLeft(), (Point{39, -18}));
}

TEST_F(FloatingPriceControllerTest, TheOffsetIsTheUsers) {
    controller.showPanel();
    for (const auto& [stored, distance] :
         {std::pair{0.0, 28.0}, std::pair{-40.0, -28.0}, std::pair{3.5, 15.5},
          std::pair{std::numeric_limits<double>::infinity(), 28.0}, std::pair{1e300, 100'012.0}}) {
        machine.preferences.setReal(config::kFloatOffset, stored);
        const Rect before = window().frame();
        settingsChanged();
        EXPECT_EQ(window().frame(), before) << "it counts from the next movement";
        follow({101, 500});
        follow({100, 500});
        EXPECT_EQ(topLeft(), (Point{100 + distance, 500 - distance})) << stored;
    }
}

TEST_F(FloatingPriceControllerTest, HiddenAndShownAgainItIsTheSameWindowAsFadedAsItWas) {
    controller.showPanel();
    update(1);
    follow({10, 10});
    controller.hidePanel();
    EXPECT_EQ(machine.runLoop.pending(), 0U) << "a hidden panel costs nothing";
    controller.showPanel();
    fadeAway();
    controller.hidePanel();
    EXPECT_FALSE(window().isShown());
    const int asked = desktop.pointer.asked;
    ticks(50);
    EXPECT_EQ(desktop.pointer.asked, asked);

    settingsChanged();
    EXPECT_FALSE(window().isShown()) << "it was not asked for";

    for (int i = 0; i < 3; ++i) {
        controller.showPanel();
        controller.hidePanel();
    }
    controller.showPanel();
    EXPECT_EQ(desktop.windows.overlays.size(), 1U);
    EXPECT_TRUE(window().isShown());
    EXPECT_EQ(window().alpha(), 0);
    const int before = desktop.pointer.asked;
    ticks(10);
    EXPECT_EQ(desktop.pointer.asked - before, 10) << "one timer";
    follow({20, 20});
    EXPECT_EQ(window().alpha(), 1);
}

TEST_F(FloatingPriceControllerTest, SavedSettingsBringAFadedPanelBack) {
    controller.showPanel();
    follow({10, 10});
    fadeAway();
    const int fronts = window().ordersFront;
    settingsChanged();
    EXPECT_DOUBLE_EQ(window().alpha(), 0.95) << "and it starts to fade again";
    EXPECT_EQ(window().ordersFront, fronts + 1);
}

TEST_F(FloatingPriceControllerTest, ItGrowsUpwardsWithItsContent) {
    controller.showPanel();
    follow({100, 800});
    for (const int coins : {1, 5, 0}) {
        const Rect before = window().frame();
        update(coins);
        EXPECT_EQ(window().frame().origin(), before.origin());
        EXPECT_NE(window().frame().height, before.height);
        EXPECT_EQ(window().frame().height, window().picture->size().height - 2 * window().margin);
    }
    update(5);
    follow({100, 801});
    EXPECT_EQ(topLeft(), (Point{128, 773}));
}

TEST_F(FloatingPriceControllerTest, WhatIsSwitchedOnShowsAtOnce) {
    controller.showPanel();
    update(1);
    desktop.pointer.at = Point{100, 100};
    const auto changes = [this](auto&& change) {
        const auto before = window().picture;
        change();
        return window().picture != before;
    };
    EXPECT_FALSE(changes([&] { settingsChanged(); })) << "nothing else is shown";
    EXPECT_FALSE(changes([&] { update(1); }));
    EXPECT_TRUE(changes([&] {
        machine.preferences.setBoolean(config::kShowHighLow, true);
        settingsChanged();
    }));
    EXPECT_TRUE(changes([&] {
        machine.preferences.setBoolean(config::kFloatTransparent, true);
        settingsChanged();
    }));
    EXPECT_TRUE(changes([&] { desktop.events.setAppearance(platform::Appearance::Dark); }));
    EXPECT_TRUE(changes([&] {
        window().pixelsPerPoint = 2;
        window().onSurroundingsChanged();
    }));
    machine.preferences.setString(config::kSelectedSource, "gate");
    EXPECT_TRUE(changes([&] { update(1); }));
    EXPECT_EQ(platform::drawn(window().picture).operations.at(0).image->text("Gate").font.size, 11);
}

TEST_F(FloatingPriceControllerTest, TheRingIsDrawnOncePerPixelWhileItIsSeen) {
    menubar::RefreshState::shared(machine.platform()).currentInterval = platform::Seconds(50);
    const auto sweep = [this] {
        const auto arcs = platform::drawn(window().picture).all(platform::Drawn::Kind::Arc);
        return arcs.empty() ? 0 : arcs[0].arc.sweep;
    };
    controller.showPanel();
    EXPECT_EQ(sweep(), -360);
    update(1, 50s);
    EXPECT_EQ(sweep(), -360);
    int drawings = desktop.graphics.drawings;
    follow({10, 10});
    machine.advance(5s);  // 50 pixels in 50 s
    EXPECT_EQ(desktop.graphics.drawings - drawings, 5);
    EXPECT_NEAR(sweep(), -360 * 45 / 50.0, 1e-9);

    ticks(270);  // ten seconds in all, and the fading
    EXPECT_EQ(window().alpha(), 0);
    drawings = desktop.graphics.drawings;
    machine.advance(10s);
    EXPECT_EQ(desktop.graphics.drawings, drawings) << "nobody sees it";
    follow({20, 20});
    EXPECT_EQ(desktop.graphics.drawings, drawings + 1) << "and it is right when it is seen again";
    EXPECT_NEAR(sweep(), -360 * 30 / 50.0, 1e-9);

    for (int i = 0; i < 60; ++i) {
        follow({20.0 + i, 20});
        machine.advance(980ms);
    }
    EXPECT_EQ(sweep(), 0);
    EXPECT_EQ(machine.runLoop.pending(), 1U) << "an empty ring has nothing to wait for";
}

}  // namespace
}  // namespace glintar::floating
