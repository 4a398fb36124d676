// The widgets of dashboard and diagnostics, read as a screen reader reads them.

#include "arbiter/DashboardStyle.h"
#include "arbiter/DashboardView.h"
#include "diagnostics/NetworkDiagnosticView.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/windows/QtView.h"
#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/FolderBundle.h"
#include "support/Market.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextDocument>
#include <gmock/gmock.h>

namespace glintar {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class ViewsTest : public testing::Test {
protected:
    ViewsTest() {
        test::ship(machine, R"({"sources":[
            {"id":"a","name":"Alpha","supports_batch":false,"url_template":"https://a.test/{ID}",
             "response_type":"object","price_path":"p"},
            {"id":"b","name":"Beta","supports_batch":false,"url_template":"https://b.test/{ID}",
             "response_type":"object","price_path":"p"}]})");
        machine.http.answer("a.test/bitcoin", R"({"p":100})");
        machine.http.answer("b.test/bitcoin", R"({"p":99})");
        machine.http.answer("b.test/one", R"({"p":0.5})");
    }

    void show(std::unique_ptr<platform::View> view) {
        widget = static_cast<platform::QtView&>(*view).take();
        widget->show();
    }

    /// What is drawn as text and what can be pressed, in order.
    [[nodiscard]] std::vector<std::string> read() const {
        QApplication::processEvents();
        std::vector<std::string> texts;
        const std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* part) {
            const auto role = part->role();
            const bool isSaid = role == QAccessible::StaticText || role == QAccessible::Button;
            const auto name = part->text(QAccessible::Name).toStdString();
            if (isSaid && !part->state().invisible && !name.empty()) {
                texts.push_back(name);
            }
            for (int i = 0; i < part->childCount(); ++i) {
                walk(part->child(i));
            }
        };
        walk(QAccessible::queryAccessibleInterface(widget.get()));
        return texts;
    }

    void press(const QString& name) {
        for (auto* const button : widget->findChildren<QAbstractButton*>()) {
            if (button->text() == name || button->accessibleName() == name) {
                button->click();
            }
        }
        QApplication::processEvents();
    }

    platform::VirtualPlatform machine;
    test::FolderBundle bundle;
    platform::QtGraphics graphics{bundle};
    platform::VirtualDesktop screen{machine.notifications};
    platform::Desktop desktop{graphics,       screen.events,    screen.statusBar, screen.pointer,
                              screen.windows, screen.clipboard, screen.workspace, screen.loginItem};
    std::unique_ptr<QWidget> widget;
};

TEST_F(ViewsTest, ADashboardReadsItsColumnsOneByOneAndFollowsTheirPrices) {
    arbiter::ArbiterDetailView model(machine.platform(), graphics,
                                     {test::coin("btc", "bitcoin"), test::coin("one", "one")}, {});
    model.appeared();
    bool isClosed = false;
    model.onClose = [&] { isClosed = true; };
    show(arbiter::makeDashboardView(machine.platform(), desktop, model));
    EXPECT_THAT(read(), ElementsAre("BTC", "ONE", "Updated: 03:04:05", "Close Window"));
    const int height = widget->sizeHint().height();
    machine.advance(1s);
    EXPECT_THAT(read(),
                ElementsAre("BTC", "100.00", "1.000%", "99.00", "ONE", "0.5000", "Updated: 03:04:05", "Close Window"));
    QApplication::processEvents();  // layouts are told one after another
    EXPECT_GT(widget->sizeHint().height(), height);

    const auto labels = widget->findChildren<QLabel*>();
    EXPECT_EQ(labels.size(), 10) << "two headings, three prices with their pictures, one gap, the state";
    auto* const price = labels[2];
    EXPECT_EQ(price->toolTip(), Qt::convertFromPlainText("Alpha")) << "not as markup";
    EXPECT_EQ(price->accessibleDescription(), "Alpha");
    const auto highest = [&] { return price->palette().windowText().color(); };
    const auto inLight = highest();
    screen.events.setAppearance(platform::Appearance::Dark);
    EXPECT_NE(highest(), inLight);

    auto* const scroller = widget->findChild<QScrollArea*>();
    widget->resize(widget->sizeHint());
    QApplication::processEvents();
    EXPECT_EQ(scroller->verticalScrollBar()->maximum() + scroller->horizontalScrollBar()->maximum(), 0);
    widget->resize(widget->width(), widget->height() - 20);
    QApplication::processEvents();
    EXPECT_GT(scroller->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(scroller->horizontalScrollBar()->maximum(), 0) << "one bar does not call for the other";

    press("Close Window");
    EXPECT_TRUE(isClosed);
    widget.reset();
}

TEST_F(ViewsTest, DiagnosticsReadNameAndStateAndCanBeCopied) {
    machine.http.answer("a.test/bitcoin", "");
    machine.http.fail("b.test", {});
    diagnostics::NetworkDiagnosticManager manager(machine.platform());
    show(diagnostics::makeNetworkDiagnosticView(machine.platform(), desktop, manager));
    const auto* title = "Network Diagnostics";
    const auto* subtitle = "Check your connection to core services.";
    EXPECT_THAT(read(), ElementsAre(title, subtitle, "Alpha API", "-", "Beta API", "-", "Ready", "Copy", "Run Test"));
    press("Run Test");
    EXPECT_THAT(read(), ElementsAre(title, subtitle, "Alpha API", "testing", "Beta API", "-", "Testing in progress...",
                                    "Copy", "Testing..."));
    machine.advance(1s);
    EXPECT_THAT(read(),
                ElementsAre(title, subtitle, "Alpha API", "5ms", "Beta API", "Failed", "Ready", "Copy", "Run Test"));
    press("Copy");
    EXPECT_EQ(screen.clipboard.text, "Glintar 1.2.3\nAlpha API     5ms\nBeta API   Failed\n");
    widget.reset();
}

}  // namespace
}  // namespace glintar

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
