// Whether the price line has room, and what is said when it has not.

#include "menubar/StatusItemsTest.h"
#include "platform/NotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace glintar::menubar {
namespace {

using platform::ItemSight;
using Cover = ItemSight::Cover;

TEST(HasRoomTest, TheLineIsSeenWholeAndNotPushedAside) {
    const ItemSight seen{.width = 2, .left = 180};
    EXPECT_TRUE(hasRoom(seen));
    EXPECT_TRUE(hasRoom({.width = 2, .left = 0, .isPlacedByUser = true}));
    for (const auto& hidden : {ItemSight{.width = 2, .left = 179.9}, ItemSight{.width = 1.9, .left = 180},
                               ItemSight{.cover = Cover::Windows, .width = 2, .left = 180},
                               ItemSight{.cover = Cover::FullScreen, .width = 2, .left = 180},
                               ItemSight{.width = 2, .left = 180, .leftOut = 1}}) {
        EXPECT_FALSE(hasRoom(hidden));
    }
}

class DisplaySpaceTest : public StatusItemsTest {
protected:
    void SetUp() override {
        StatusItemsTest::SetUp();
        add("btc");
        show("Last Updated: 01:02:03");
        settle();
        posted_ = machine.notifications.observe(config::kDisplayModeChanged, [this] { notices += "mode "; });
        alsoPosted_ =
            machine.notifications.observe(config::kDisplaySettingsChanged, [this] { notices += "settings "; });
        asked_ = machine.notifications.observe(kRequestOpenDisplaySettings, [this] { notices += "open "; });
    }
    void look(Cover cover) {
        desktop.statusBar.items[1]->sight.cover = cover;
        items->checkVisibility();
        settle();
    }
    std::string status() { return anchor().menu.at(0).title; }
    auto& alerts() { return desktop.windows.alerts; }

    std::string notices;

private:
    std::unique_ptr<platform::NotificationCenter::Observation> posted_, alsoPosted_, asked_;
};

TEST_F(DisplaySpaceTest, EachTimeItIsHiddenTheUserIsAskedOnce) {
    look(Cover::FullScreen);
    EXPECT_EQ(status(), "Status: Hidden (No Space)");
    EXPECT_TRUE(alerts().empty()) << "a film is not interrupted";
    look(Cover::Windows);
    look(Cover::Windows);
    look(Cover::None);
    look(Cover::Windows);
    ASSERT_EQ(alerts().size(), 1U) << "and has not answered yet";
    EXPECT_EQ(alerts()[0]->text.title, "Not Enough Display Space");
    EXPECT_THAT(alerts()[0]->text.text, testing::HasSubstr("no room for your selected content.\n\nSuggested Actions:"));
    EXPECT_THAT(alerts()[0]->text.buttons, testing::ElementsAre("Switch to Mouse Follow", "Open Settings", "OK"));
    alerts()[0]->answer(2);
    EXPECT_EQ(notices, "");
    look(Cover::None);
    EXPECT_EQ(status(), "Display: Active");
    look(Cover::Windows);
    ASSERT_EQ(alerts().size(), 2U);
    alerts()[1]->answer(1);
    EXPECT_EQ(notices, "open ");
    look(Cover::None);
    look(Cover::Windows);
    alerts()[2]->answer(0);
    EXPECT_EQ(notices, "open mode settings ");
    EXPECT_EQ(machine.preferences.integer("displayMode"), 1);
}

TEST_F(DisplaySpaceTest, ALineThatIsNotMeantToBeSeenHasAllTheRoomItNeeds) {
    quotes.clear();
    coins.clear();
    show();
    settle();
    look(Cover::Windows);
    items->hide();
    look(Cover::Windows);
    EXPECT_EQ(status(), "Status: Normal");

    items->show();
    add("eth");
    show("Last Updated: 01:02:03");
    settle();
    machine.preferences.setInteger("displayMode", 1);
    look(Cover::Windows);
    EXPECT_TRUE(alerts().empty()) << "the mode was switched before the alert came";
}

TEST_F(DisplaySpaceTest, TheTooltipCountsTheCoinsThatDoNotFit) {
    add("eth");
    add("sol");
    gas = 12;
    machine.preferences.setBoolean("showGasFee", true);
    show("Last Updated: 01:02:03");
    settle();
    for (const auto& [leftOut, text] :
         {std::pair{1, ""}, std::pair{2, "\n1 more coin does not fit"}, std::pair{3, "\n2 more coins do not fit"}}) {
        desktop.statusBar.items[1]->sight.leftOut = leftOut;
        items->checkVisibility();
        EXPECT_EQ(display().toolTip, std::string("Last Updated: 01:02:03") + text) << leftOut;
    }
}

}  // namespace
}  // namespace glintar::menubar
