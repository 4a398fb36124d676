#include "PanelFixture.h"

namespace glintar::floating {

using FloatingPriceControllerTest = PanelFixture;

TEST_F(FloatingPriceControllerTest, ThePanelFollowsThePointer) {
    ticks(10);
    update(1);
    machine.notifications.post(config::kDisplaySettingsChanged);
    desktop.events.setAppearance(platform::Appearance::Dark);
    controller.hidePanel();
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
    desktop.pointer.at = Point{400, 400};
    const Rect frame = window().frame();
    controller.showPanel();
    EXPECT_EQ(window().frame(), frame) << "it is shown already";
    ticks(1);
    const int moves = window().moves;
    ticks(100);
    EXPECT_EQ(window().moves, moves) << "a still pointer moves nothing";
    EXPECT_EQ(desktop.windows.notices.size(), 0U);
}

TEST_F(FloatingPriceControllerTest, ItFadesWhenThePointerRestsAndReturnsAtItsMovement) {
    controller.showPanel();
    EXPECT_EQ(topLeft(), (Point{28, -28})) << "the pointer may be at the origin";
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
        settingsSaved();
        EXPECT_EQ(window().frame(), before) << "it counts from the next movement";
        follow({101, 500});
        follow({100, 500});
        EXPECT_EQ(topLeft(), (Point{100 + distance, 500 - distance})) << stored;
    }
}

TEST_F(FloatingPriceControllerTest, HiddenAndShownAgainItIsTheSameWindowAsFadedAsItWas) {
    controller.showPanel();
    follow({10, 10});
    update(1);
    ticks(300);
    controller.hidePanel();
    update(2);
    update(1);
    EXPECT_EQ(machine.runLoop.pending(), 0U) << "a hidden panel costs nothing";
    const Rect frame = window().frame();
    controller.showPanel();
    EXPECT_EQ(window().frame(), frame);
    ticks(200);
    EXPECT_EQ(window().alpha(), 1);
    ticks(1);
    EXPECT_DOUBLE_EQ(window().alpha(), 0.95) << "it counts on where it was";
    ticks(19);
    controller.hidePanel();
    EXPECT_FALSE(window().isShown());
    const int asked = desktop.pointer.asked;
    ticks(50);
    EXPECT_EQ(desktop.pointer.asked, asked);

    settingsSaved();
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
    EXPECT_EQ(window().alpha(), 0) << "nothing has moved yet";
    follow({20, 20});
    EXPECT_EQ(window().alpha(), 1);
}

TEST_F(FloatingPriceControllerTest, SavedSettingsBringAFadedPanelBack) {
    controller.showPanel();
    follow({10, 10});
    fadeAway();
    const int fronts = window().ordersFront;
    settingsSaved();
    EXPECT_DOUBLE_EQ(window().alpha(), 0.95) << "and it starts to fade again";
    EXPECT_EQ(window().ordersFront, fronts + 1);
}

TEST_F(FloatingPriceControllerTest, ItGrowsUpwardsWithItsContent) {
    controller.showPanel();
    follow({100, 800});
    for (const int coins : {1, 5, 0}) {
        ticks(1);
        const Rect before = window().frame();
        update(coins);
        EXPECT_EQ(window().frame().origin(), before.origin());
        EXPECT_NE(window().frame().height, before.height);
        EXPECT_EQ(window().frame().height, window().picture->size().height - 2 * window().margin);
    }
    ticks(1);
    update(5);
    const Rect grown = window().frame();
    settingsSaved();
    EXPECT_EQ(window().frame(), grown) << "until the pointer moves";
    follow({100, 801});
    EXPECT_EQ(topLeft(), (Point{128, 773}));
}

TEST_F(FloatingPriceControllerTest, WhatIsSwitchedOnShowsAtOnce) {
    controller.showPanel();
    update(1);
    desktop.pointer.at = Point{100, 100};
    const auto changes = [this](auto&& change) {
        ticks(1);
        const auto before = window().picture;
        change();
        return window().picture != before;
    };
    EXPECT_FALSE(changes([&] { settingsSaved(); })) << "nothing else is shown";
    EXPECT_FALSE(changes([&] { update(1); }));
    EXPECT_TRUE(changes([&] {
        machine.preferences.setBoolean(config::kShowHighLow, true);
        settingsSaved();
    }));
    EXPECT_TRUE(changes([&] {
        machine.preferences.setBoolean(config::kFloatTransparent, true);
        settingsSaved();
    }));
    EXPECT_TRUE(changes([&] { desktop.events.setAppearance(platform::Appearance::Dark); }));
    EXPECT_TRUE(changes([&] { desktop.events.setAppearance(platform::Appearance::Dark); })) << "the font";
    EXPECT_TRUE(changes([&] {
        window().pixelsPerPoint = 2;
        window().onSurroundingsChanged();
    }));
    machine.preferences.setString(config::kSelectedSource, "gate");
    EXPECT_TRUE(changes([&] { update(1); }));
    EXPECT_EQ(platform::drawn(window().picture).all(platform::Drawn::Kind::Image).back().image->text("Gate").font.size,
              11);
}

TEST_F(FloatingPriceControllerTest, ManyUpdatesAtOnceCostOneDrawingATick) {
    controller.showPanel();
    ticks(1);
    const int before = window().picturesSet;
    for (int i = 1; i <= 100; ++i) {
        update(i % 5);
        machine.advance(10ms);
    }
    EXPECT_LE(window().picturesSet - before, 51);
    EXPECT_GE(window().picturesSet - before, 50);
    ticks(1);
    const double none = window().frame().height;
    update(1);
    update(2);
    update(5);
    const double one = window().frame().height;
    EXPECT_GT(one, none) << "the first at once";
    ticks(1);
    EXPECT_GT(window().frame().height, one) << "and the last in the end";

    update(1);
    update(2);
    controller.hidePanel();
    EXPECT_EQ(machine.runLoop.pending(), 0U);
}

TEST_F(FloatingPriceControllerTest, TheRingIsDrawnOncePerPixelWhileItIsSeen) {
    presenter::RefreshState::shared(machine.platform()).currentInterval = platform::Seconds(57);
    controller.showPanel();
    update(1, 57s);
    EXPECT_EQ(sweep(), 360);
    int drawings = desktop.graphics.drawings;
    follow({10, 10});
    machine.advance(6s);  // 57 pixels in 57 s, from the first second on
    EXPECT_EQ(desktop.graphics.drawings - drawings, 5);
    EXPECT_NEAR(sweep(), 360 * 52 / 57.0, 1e-9);

    ticks(220);  // ten seconds in all, and the fading
    EXPECT_EQ(window().alpha(), 0);
    drawings = desktop.graphics.drawings;
    machine.advance(10s);
    EXPECT_EQ(desktop.graphics.drawings, drawings) << "nobody sees it";
    EXPECT_EQ(machine.runLoop.pending(), 1U);
    follow({20, 20});
    EXPECT_EQ(desktop.graphics.drawings, drawings + 1) << "and it is right when it is seen again";
    EXPECT_NEAR(sweep(), 360 * 38 / 57.0, 1e-9);

    for (int i = 0; i < 40; ++i) {
        follow({20.0 + i, 20});
        machine.advance(980ms);
    }
    EXPECT_EQ(sweep(), 0);
    drawings = desktop.graphics.drawings;
    update(1, 57s);
    machine.advance(2s);
    EXPECT_GE(sweep(), 360 * 56 / 57.0);
    EXPECT_LE(desktop.graphics.drawings - drawings, 52) << "a refill can be followed, no more";
}

}  // namespace glintar::floating
