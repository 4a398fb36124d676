// The widgets of the settings, used as a screen reader uses them.

#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/windows/QtView.h"
#include "platform/virtual/VirtualPlatform.h"
#include "platform/virtual/VirtualWorkspace.h"
#include "settings/settingsView.h"
#include "support/FolderBundle.h"
#include "support/Market.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <gmock/gmock.h>

namespace glintar::settings {
namespace {

/// Does to the part so called what a screen reader can do to it.
void act(QAccessibleInterface& part, const QString& name) {
    if (part.text(QAccessible::Name) == name && part.actionInterface() != nullptr) {
        part.actionInterface()->doAction(part.role() == QAccessible::PageTab
                                             ? QAccessibleActionInterface::pressAction()
                                             : QAccessibleActionInterface::toggleAction());
    }
    for (int i = 0; i < part.childCount(); ++i) {
        act(*part.child(i), name);
    }
}

TEST(SettingsViewsTest, AScreenReaderCanSwitchChooseAndTakeSuggestions) {
    platform::VirtualPlatform machine;
    platform::VirtualLoginItem loginItem;
    platform::VirtualWorkspace workspace;
    test::FolderBundle bundle;
    const platform::QtGraphics graphics{bundle};
    test::ship(machine);
    machine.files.contents["/bundle/coingecko_coins_list.json"] =
        R"([{"id":"a","symbol":"x","name":"A"},{"id":"b","symbol":"xy","name":"B"}])";
    settingsViewModel model{machine.platform(), {loginItem, workspace, {}, {}, {}}, "coins"};
    const auto view = static_cast<platform::QtView&>(*makeSettingsView(model, graphics)).take();
    view->show();
    auto& root = *QAccessible::queryAccessibleInterface(view.get());
    for (const auto* name : {"Display", "Mouse Follow", "Show 24h Change (%)", "Data Source", "Binance", "Coins"}) {
        act(root, name);
    }
    EXPECT_EQ(machine.preferences.integer("displayMode"), 1);
    EXPECT_TRUE(machine.preferences.boolean("showChange24h"));
    EXPECT_EQ(machine.preferences.string("selectedSourceID"), "binance");

    auto* const suggestions = view->findChild<QListWidget*>();
    for (const int key : {0, static_cast<int>(Qt::Key_Return), static_cast<int>(Qt::Key_Space)}) {
        model.coins.setName("x");
        suggestions->setCurrentRow(0);
        QApplication::processEvents();
        EXPECT_EQ(model.coins.newCoinDisplayName, "x") << "only made current";
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        key == 0 ? act(root, "XY (b)") : static_cast<void>(QApplication::sendEvent(suggestions, &press));
        QApplication::processEvents();
        QApplication::processEvents();
        EXPECT_EQ(model.coins.newCoinDisplayName, key == 0 ? "XY (b)" : "X (a)") << key;
    }
}

}  // namespace
}  // namespace glintar::settings

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
