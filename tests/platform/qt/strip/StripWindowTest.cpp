#include "platform/qt/strip/StripFixture.h"
#include "platform/qt/windows/ManagerMessage.h"

#include <QAccessible>
#include <QApplication>
#include <QEvent>
#include <QTextDocumentFragment>
#include <QToolTip>
#include <QWidget>
#include <gmock/gmock.h>

namespace glintar::test {

namespace {

using platform::Appearance;
using platform::Color;
using platform::MouseButton;
using platform::Rect;
using testing::ElementsAre;
using testing::HasSubstr;

using StripWindow = StripFixture;

class StripUnderManager : public StripWindow, public testing::WithParamInterface<Display::Manager> {
protected:
    StripUnderManager() { display().startManager(GetParam()); }
};

TEST_P(StripUnderManager, KeepsOutOfTheWayOfOtherWindows) {
    const Child other({"xev", "-name", "other", "-geometry", "300x200+100+300"});
    ASSERT_TRUE(soon([] { return outputOf({"xdotool", "getwindowfocus", "getwindowname"}) == "other\n"; }));

    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    EXPECT_EQ(outputOf({"xdotool", "getwindowfocus", "getwindowname"}), "other\n");

    std::vector<MouseButton> clicks;
    line->onMouseUp = [&](MouseButton button) { clicks.push_back(button); };
    const Rect frame = seen().value().frame;
    display().input({"mousemove", std::to_string(int(frame.x + 30)), "10", "click", "1", "click", "3"});
    EXPECT_TRUE(soon([&] { return clicks.size() == 2; }));
    display().input({"mousedown", "3", "mousemove", "600", "200", "mouseup", "3"});
    settle();
    EXPECT_THAT(clicks, ElementsAre(MouseButton::Left, MouseButton::Right));
    EXPECT_EQ(outputOf({"xdotool", "getwindowfocus", "getwindowname"}), "other\n");

    // The second time it is told anew: window managers take the properties away from hidden windows.
    for (int time = 0; time < 2; ++time) {
        for (const char* const state : {"SKIP_TASKBAR", "SKIP_PAGER"}) {
            EXPECT_TRUE(soon([&] { return property("_NET_WM_STATE").contains(state); })) << state;
        }
        EXPECT_TRUE(soon([&] { return property("_NET_WM_DESKTOP").contains("4294967295"); }));
        EXPECT_THAT(property("_NET_WM_WINDOW_TYPE"), HasSubstr("TYPE_DOCK"));
        EXPECT_THAT(property("WM_CLASS"), HasSubstr(R"("glintar", "glintar")"));
        line->setVisible(false);
        icon->setVisible(false);
        ASSERT_TRUE(soon([&] { return !seen(); }));
        line->setVisible(true);
        icon->setVisible(true);
        ASSERT_TRUE(comesToEndAt(1280, 0));
    }
}

TEST_P(StripUnderManager, IsAboveWindowsOnlyUntilTheyFillTheScreen) {
    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    const auto isSeen = [] { return std::ranges::count(display().pixels(1000, 0, 280, 28), kBlue) > 0; };
    QWidget other;
    other.showMaximized();
    ASSERT_TRUE(soon([&] { return other.isActiveWindow() && other.width() > 1200; }));
    EXPECT_TRUE(soon(isSeen));
    other.showFullScreen();
    EXPECT_TRUE(soon([&] { return !isSeen(); }));
    other.showMaximized();
    EXPECT_TRUE(soon(isSeen));
}

INSTANTIATE_TEST_SUITE_P(Managers, StripUnderManager,
                         testing::Values(Display::Manager::Openbox, Display::Manager::Xfwm4));

TEST_F(StripWindow, IsTranslucentWhereThereIsACompositorAndOpaqueElsewhere) {
    display().paintWall({0, 0xc0, 0});
    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    const auto behind = [] { return display().pixel(1253, 2); };
    EXPECT_TRUE(soon([&] { return behind() == Pixel{0xf2, 0xf2, 0xf2}; }));
    events.setAppearance(Appearance::Dark);
    EXPECT_TRUE(soon([&] { return behind() == Pixel{0x20, 0x20, 0x20}; }));
    display().startCompositor();
    EXPECT_TRUE(soon([&] { return behind() == Pixel{0, 0xc0, 0}; }));
    display().stopCompositor();
    EXPECT_TRUE(soon([&] { return behind() == Pixel{0x20, 0x20, 0x20}; }));
}

/// Run at other scales too (CMakeLists.txt).
TEST_F(StripWindow, PaintsOnlyWhatHasChanged) {
    start();
    line->setImage(pill(28, Color::white(0.5)));
    showPills();
    ASSERT_TRUE(soon([&] { return seen().has_value(); }));
    settle();
    const Rect frame = seen().value().frame;
    const auto middle = display().pixels(int(frame.x), 14, int(frame.width), 1);
    const auto begins = [&](const Pixel& color) { return std::ranges::find(middle, color) - middle.begin(); };
    const std::vector places{begins({128, 128, 128}), begins(kRed), begins(kBlue), begins(kOrange)};
    EXPECT_TRUE(std::ranges::is_sorted(places) && places.back() < std::ssize(middle)) << testing::PrintToString(places);

    struct Paints final : QObject {
        bool eventFilter(QObject* watched, QEvent* event) override {
            if (event->type() == QEvent::Paint && watched->isWidgetType()) {
                ++count;
            }
            return false;
        }
        int count = 0;
    } paints;
    qApp->installEventFilter(&paints);
    line->setImage(pill(28, Color::white(0.6)));
    settle();
    EXPECT_EQ(paints.count, 1) << "the countdown's own";
    showText("Net Error");
    settle();
    paints.count = 0;
    showPills();
    settle();
    EXPECT_GT(paints.count, 1);
}

TEST_P(StripUnderManager, TellsWhetherTheLineIsSeen) {
    using enum platform::ItemSight::Cover;
    using Kind = OtherWindow::Kind;
    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    settle();
    const Rect place = seen().value().frame;
    const auto left = std::int16_t(place.x);
    const auto width = std::uint16_t(place.width);
    const auto sees = [&](platform::ItemSight::Cover cover) { return line->sight().cover == cover; };
    const auto check = [&] {
        EXPECT_TRUE(sees(None));
        const OtherWindow half(Kind::Unmanaged, kRed, {left, 14, width, 20});
        const OtherWindow glass(Kind::ClickedThrough, kBlue, {left, 0, width, 28});
        EXPECT_TRUE(sees(None));
        const OtherWindow rest(Kind::Unmanaged, kRed, {left, 0, std::uint16_t(width - 28), 14});
        EXPECT_TRUE(sees(Windows));
        EXPECT_EQ(icon->sight().cover, None);
        const OtherWindow film(Kind::Unmanaged, kOrange, {0, 0, 1280, 800});
        EXPECT_TRUE(sees(FullScreen)) << "on purpose";
    };
    check();
    display().startCompositor();
    check();
    EXPECT_EQ(line->sight().left, place.x);
    EXPECT_EQ(line->sight().width, place.width - 28);
    line->setVisible(false);
    EXPECT_EQ(line->sight().width, 0);
}

TEST_P(StripUnderManager, OpensAMenuThatWorksByMouseAndKeys) {
    start();
    showPills();
    std::string chosen;
    const auto menuWith = [&](const std::string& status, bool isEnabled) {
        return platform::Menu{
            {.title = status, .isEnabled = false},
            {.isSeparator = true},
            {.title = "Dashboard", .action = [&] { chosen += 'd'; }, .shortcut = 'd', .isEnabled = isEnabled},
            {.title = "Quit...", .action = [&] { chosen += 'q'; }, .shortcut = 'q'}};
    };
    icon->setMenu(menuWith("Status: Normal", false));
    icon->onMouseUp = [&](MouseButton) { icon->popUpMenu({-10, -16}); };
    ASSERT_TRUE(comesToEndAt(1280, 0));
    const auto open = [](const char* button) {
        display().input({"mousemove", "1266", "14", "click", button});
        const auto isOpen = [] {
            return QApplication::activePopupWidget() && QApplication::activePopupWidget()->isVisible();
        };
        EXPECT_TRUE(soon(isOpen));
        return QApplication::activePopupWidget();
    };
    const auto gets = [&](const std::string& expected) {
        return soon([&] { return chosen == expected && QApplication::activePopupWidget() == nullptr; });
    };

    QWidget* const menu = open("1");
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->geometry().top(), 28 + 16);
    const QAction* const quit = menu->actions().last();
    EXPECT_EQ(quit->text(), "Quit...");
    display().input({"key", "ctrl+d"});
    settle();
    icon->setMenu(menuWith("Display: Active", true));
    EXPECT_EQ(menu->actions().first()->text(), "Display: Active") << "while it is open";
    EXPECT_EQ(menu->actions().last(), quit) << "the entry under the pointer stays the same";
    display().input({"mousemove", std::to_string(menu->geometry().center().x()),
                     std::to_string(menu->geometry().bottom() - 12), "click", "1"});
    EXPECT_TRUE(gets("q")) << chosen;
    open("3");
    display().input({"key", "Down", "key", "Return"});
    EXPECT_TRUE(gets("qd"));
    open("1");
    display().input({"key", "ctrl+q"});
    EXPECT_TRUE(gets("qdq")) << chosen;
    open("1");
    display().input({"key", "Escape"});
    EXPECT_TRUE(gets("qdq"));

    QWidget window;
    platform::bringToFront(window);
    ASSERT_TRUE(soon([&] { return window.isActiveWindow(); }));
    display().input({"key", "ctrl+d"});
    EXPECT_TRUE(gets("qdqd")) << chosen;
}

TEST_F(StripWindow, ShowsTheToolTipOfTheItemUnderThePointer) {
    const auto shownTip = [] { return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText(); };
    start();
    showPills();
    line->setToolTip("Error: a & b <12:00:00>");
    icon->setToolTip("Glintar");
    ASSERT_TRUE(comesToEndAt(1280, 0));
    display().input({"mousemove", "1266", "14", "sleep", "0.1", "mousemove", "1267", "15"});
    EXPECT_TRUE(soon([&] { return shownTip() == "Glintar"; }));
    display().input({"mousemove", "1230", "14", "sleep", "0.1", "mousemove", "1229", "15"});
    EXPECT_TRUE(soon([&] { return QToolTip::isVisible() && shownTip() == "Error: a & b <12:00:00>"; }));
    display().input({"mousemove", "600", "600"});
}

TEST_F(StripWindow, NamesItsPartsForThoseWhoCannotSeeThem) {
    start();
    showPills();
    line->setToolTip("a & b");
    EXPECT_THAT(property("_NET_WM_STATE"), HasSubstr("STICKY")) << "nor move it along with a desktop";
    int presses = 0;
    line->onMouseUp = [&](MouseButton) { ++presses; };
    const auto widgets = QApplication::topLevelWidgets();
    const auto strip = std::ranges::find(widgets, QString("Glintar prices"), &QWidget::windowTitle);
    ASSERT_NE(strip, widgets.end());
    auto* const window = QAccessible::queryAccessibleInterface(*strip);
    ASSERT_EQ(window->childCount(), 2);
    EXPECT_EQ(window->child(0)->text(QAccessible::Name), "Glintar");
    auto* const seenLine = window->child(1);
    EXPECT_EQ(seenLine->text(QAccessible::Description), "a & b");
    EXPECT_EQ(seenLine->text(QAccessible::Name), "Bitcoin, Ether");
    EXPECT_EQ(seenLine->role(), QAccessible::Button);
    std::vector<QString> pills;
    for (int index = 0; index < seenLine->childCount(); ++index) {
        if (!seenLine->child(index)->state().invisible) {
            pills.push_back(seenLine->child(index)->text(QAccessible::Name));
        }
    }
    EXPECT_THAT(pills, ElementsAre("Bitcoin", "Ether"));
    seenLine->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(presses, 1);
}

}  // namespace

}  // namespace glintar::test
