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
#include <QVBoxLayout>
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

/// As large as its content once that asks for room, as the real window is.
class Window final : public QWidget {
    bool event(QEvent* event) override {
        const bool isHandled = QWidget::event(event);
        if (event->type() == QEvent::LayoutRequest) {
            resize(sizeHint());
        }
        return isHandled;
    }
};

class SettingsViewsTest : public testing::Test {
protected:
    SettingsViewsTest() { test::ship(machine); }

    std::unique_ptr<QWidget> show() {
        model.emplace(machine.platform(),
                      settingsViewModel::Environment{
                          loginItem, workspace, {"a@b.example", "https://b.example", "https://b.example/faq"}, {}, {}},
                      "coins");
        auto view = static_cast<platform::QtView&>(*makeSettingsView(*model, graphics)).take();
        view->show();
        return view;
    }

    platform::VirtualPlatform machine;
    platform::VirtualLoginItem loginItem;
    platform::VirtualWorkspace workspace;
    test::FolderBundle bundle;
    const platform::QtGraphics graphics{bundle};
    std::optional<settingsViewModel> model;
};

TEST_F(SettingsViewsTest, NoFontOfTheDesktopCutsAText) {
    const QFont before = QApplication::font();
    test::ship(machine,
               R"({"sources":[{"id":"a","name":"A","api_key_available":true,"API_intro":"https://a.example/docs",
        "offical_URL":"https://a.example","supports_batch":false,"url_template":"https://a.example/{ID}",
        "response_type":"object","price_path":"p"}],"gas_configs":[]})");
    machine.preferences.setInteger("displayMode", 1);  // with the controls of the panel
    for (const int points : {9, 18, 24}) {
        QApplication::setFont(QFont("Sans", points));
        Window window;
        QVBoxLayout layout(&window);
        layout.setSizeConstraint(QLayout::SetNoConstraint);
        const auto view = show();
        layout.addWidget(view.get());
        window.show();
        for (const Tab& tab : kTabs) {
            model->select(tab.tag);
            for (int level = 0; level < 5; ++level) {  // a request for room climbs one level at a time
                QApplication::processEvents();
            }
            for (const auto* const part : view->findChildren<QWidget*>()) {
                const QSize cut = part->minimumSizeHint() - part->size();
                EXPECT_TRUE(!part->isVisible() || part->parent()->inherits("QSpinBox") ||
                            part->visibleRegion().isEmpty() || (cut.width() <= 0 && cut.height() <= 0))
                    << points << " points, " << tab.title << ": " << part->metaObject()->className() << ' '
                    << QAccessible::queryAccessibleInterface(const_cast<QWidget*>(part))
                           ->text(QAccessible::Name)
                           .toStdString();
            }
        }
    }
    QApplication::setFont(before);
}

TEST_F(SettingsViewsTest, AScreenReaderCanSwitchChooseAndTakeSuggestions) {
    machine.files.contents["/bundle/coingecko_coins_list.json"] =
        R"([{"id":"a","symbol":"x","name":"A"},{"id":"b","symbol":"xy","name":"B"}])";
    const auto view = show();
    auto& root = *QAccessible::queryAccessibleInterface(view.get());
    for (const auto* name : {"Display", "Mouse Follow", "Show 24h Change (%)", "Data Source", "Binance", "Coins"}) {
        act(root, name);
    }
    EXPECT_EQ(machine.preferences.integer("displayMode"), 1);
    EXPECT_TRUE(machine.preferences.boolean("showChange24h"));
    EXPECT_EQ(machine.preferences.string("selectedSourceID"), "binance");

    auto* const suggestions = view->findChild<QListWidget*>();
    for (const int key : {0, static_cast<int>(Qt::Key_Return), static_cast<int>(Qt::Key_Space)}) {
        model->coins.setName("x");
        suggestions->setCurrentRow(0);
        QApplication::processEvents();
        EXPECT_EQ(model->coins.newCoinDisplayName, "x") << "only made current";
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        key == 0 ? act(root, "XY (b)") : static_cast<void>(QApplication::sendEvent(suggestions, &press));
        QApplication::processEvents();
        QApplication::processEvents();
        EXPECT_EQ(model->coins.newCoinDisplayName, key == 0 ? "XY (b)" : "X (a)") << key;
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
