#include "PanelFixture.h"

namespace glintar::floating {

using PanelPlacesTest = PanelFixture;

TEST_F(PanelPlacesTest, WithoutACompositorAFadedPanelLeavesTheScreen) {
    controller.showPanel();
    window().hasCompositor = false;
    window().onSurroundingsChanged();
    EXPECT_EQ(window().margin, 0);
    follow({10, 10});
    fadeAway();
    EXPECT_FALSE(window().isShown());
    controller.hidePanel();
    controller.showPanel();
    EXPECT_FALSE(window().isShown());
    follow({20, 20});
    EXPECT_TRUE(window().isShown());

    fadeAway();
    window().hasCompositor = true;  // one starts
    window().onSurroundingsChanged();
    EXPECT_TRUE(window().isShown());
    EXPECT_EQ(window().alpha(), 0);
    follow({30, 20});
    EXPECT_GT(window().margin, 0);
}

TEST_F(PanelPlacesTest, WhereThePointerIsHiddenThePanelRestsBelowTheBarAndSaysSoOnce) {
    const auto topRight = [this] { return Point{window().frame().right(), window().frame().top()}; };
    desktop.pointer.isSeen = false;
    controller.showPanel();
    EXPECT_EQ(topRight(), (Point{1280, 772}));
    EXPECT_EQ(desktop.windows.notices.size(), 1U);
    update(5);
    EXPECT_EQ(topRight(), (Point{1280, 772})) << "it grows downwards here";

    const int moves = window().moves;
    machine.advance(60s);
    EXPECT_EQ(window().alpha(), 1) << "there is no stillness to fade for";
    EXPECT_EQ(window().moves, moves);
    const double width = window().frame().width;
    const double height = window().frame().height;
    struct Row {
        Rect screen;
        Rect bar;
        Point place;
    };
    for (const auto& [screen, bar, place] :
         {Row{{0, 0, 1280, 800}, {900, 0, 380, 24}, {1280 - width, 28}},                   // bottom right
          Row{{0, 0, 1280, 800}, {0, 0, width - 9, 24}, {0, 28}},                          // bottom left
          Row{{-800, 200, 800, 600}, {-800, 200, width - 9, 24}, {-800, 228}},             // on the left
          Row{{0, -600, 800, 600}, {420, -24, 380, 24}, {800 - width, -24 - 4 - height}},  // below, its top
          Row{{0, -600, 800, 600}, {420, -600 + height, 380, 24}, {800 - width, -600 + height + 28}}}) {  // no room
        desktop.statusBar.itsScreen = screen;
        desktop.statusBar.onScreen = bar;
        machine.advance(1s);
        EXPECT_EQ(window().frame().origin(), place);
    }
    const Rect last = window().frame();
    desktop.statusBar.onScreen = {};
    machine.advance(1s);
    EXPECT_EQ(window().frame(), last) << "without a bar it stays where it was";

    controller.hidePanel();
    controller.showPanel();
    EXPECT_EQ(desktop.windows.notices.size(), 1U) << "once is enough";
}

TEST_F(PanelPlacesTest, APointerThatIsOutOfSightForAWhileChangesNothing) {
    controller.showPanel();
    follow({300, 200});
    const Rect frame = window().frame();
    desktop.pointer.at.reset();
    machine.advance(60s);
    EXPECT_EQ(window().frame(), frame);
    EXPECT_EQ(window().alpha(), 1);
    EXPECT_TRUE(desktop.windows.notices.empty());
    follow({301, 200});
    EXPECT_EQ(topLeft(), (Point{329, 172})) << "it follows at once";
}

TEST_F(PanelPlacesTest, WhatBecomesVisibleIsUpToDateBeforeItIsSeen) {
    controller.showPanel();
    update(1);
    follow({300, 200});
    controller.hidePanel();
    int drawings = desktop.graphics.drawings;
    update(5);
    desktop.pointer.at = Point{900, 700};
    controller.reloadSettings();
    EXPECT_EQ(desktop.graphics.drawings, drawings) << "nobody sees it";
    controller.showPanel();
    EXPECT_NE(desktop.graphics.drawings, drawings);
    EXPECT_EQ(window().pictureWhenShown, window().picture);
    EXPECT_EQ(window().frameWhenShown, window().frame());
    EXPECT_EQ(topLeft(), (Point{928, 672}));

    ticks(1);
    fadeAway();
    window().hasCompositor = false;
    window().onSurroundingsChanged();
    drawings = desktop.graphics.drawings;
    update(2);
    EXPECT_EQ(desktop.graphics.drawings, drawings);
    follow({300, 200});
    EXPECT_TRUE(window().isShown());
    EXPECT_EQ(window().pictureWhenShown, window().picture);
    EXPECT_EQ(topLeft(), (Point{328, 172}));
}

TEST_F(PanelPlacesTest, BetweenTwoScreensItComesToRest) {
    controller.showPanel();
    update(1);
    follow({300, 200});
    const double low = window().frame().height;
    const auto turnTo = [this](double scale) {  // a screen comes or goes
        window().pixelsPerPoint = scale;
        window().onSurroundingsChanged();
        EXPECT_EQ(topLeft(), (Point{328, 172}));
        return window().frame().height;
    };
    const double tall = turnTo(2);
    ASSERT_GT(tall, low) << "texts are whole pixels high";
    EXPECT_EQ(turnTo(1), low);

    const double edge = topLeft().y + (tall - low) / 2;  // of a screen with twice the pixels, below
    window().scaleAt = [edge](const Rect& frame) { return frame.top() < edge ? 2 : 1; };
    double told = 1;
    int changes = 0;
    for (; told != window().scale() && changes < 10; ++changes) {
        told = window().scale();
        window().onSurroundingsChanged();
    }
    EXPECT_EQ(changes, 1);
    follow({310, 900});
    window().onSurroundingsChanged();
    EXPECT_EQ(topLeft(), (Point{338, 872})) << "and it follows on";
    EXPECT_EQ(window().frame().height, low);
}

TEST_F(PanelPlacesTest, WhatWasSavedBeforeTheStartCounts) {
    machine.preferences.setBoolean(config::kFloatTransparent, true);
    machine.preferences.setReal(config::kFloatOffset, 100);
    FloatingPriceController later(machine.platform(), desktop.desktop());
    later.showPanel();
    EXPECT_EQ(window().title, "Glintar panel") << "window rules go by it";
    follow({300, 200});
    EXPECT_EQ(topLeft(), (Point{412, 88}));
    const auto& base = *platform::drawn(window().picture).all(platform::Drawn::Kind::Image).back().image;
    EXPECT_TRUE(std::ranges::none_of(base.all(platform::Drawn::Kind::Fill), [](const auto& fill) {
        return fill.frame.height > 20;
    })) << "without its plate";
}

}  // namespace glintar::floating
