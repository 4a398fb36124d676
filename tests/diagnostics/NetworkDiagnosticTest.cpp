#include "diagnostics/DiagnosticsStyle.h"
#include "diagnostics/DiagnosticsWindowController.h"
#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gtest/gtest.h>

namespace glintar::diagnostics {
namespace {

using namespace std::chrono_literals;
using platform::HttpMethod;

class NetworkDiagnosticTest : public testing::Test {
protected:
    NetworkDiagnosticTest() {
        test::ship(machine, R"({"sources":[{"name":"beta","url_template":"https://b.test/{SYMBOL}?{ID}"},
            {"name":"Gamma","url_template":"nonsense"},{"name":"nameless"},
            {"name":"Alpha","url_template":"https://a.test/"}],
            "gas_configs":[{"name":"Delta","url":"https://d.test/{ID}"}]})");
        machine.http.answer("b.test/BTC?bitcoin", "", 405);
        machine.http.fail("a.test", {platform::HttpError::Kind::Timeout, ""});
        machine.http.answer("d.test/%7BID%7D", "");
        machine.http.latency = 300ms;
    }

    platform::VirtualPlatform machine;
};

TEST_F(NetworkDiagnosticTest, TestsOneServiceAfterAnother) {
    NetworkDiagnosticManager manager(machine.platform());
    EXPECT_EQ(manager.report(),
              "Glintar 1.2.3\nAlpha API       -\nDelta API       -\nGamma API       -\nbeta API        -\n");
    manager.runAllTests();
    machine.advance(400ms);
    manager.runAllTests();  // ignored
    EXPECT_EQ(manager.nodes[1].status.kind, NodeStatus::Kind::testing);
    EXPECT_EQ(manager.nodes[2].status.kind, NodeStatus::Kind::idle);
    EXPECT_TRUE(manager.isTesting);
    machine.advance(1s);
    EXPECT_FALSE(manager.isTesting);
    EXPECT_EQ(manager.report(),
              "Glintar 1.2.3\nAlpha API  Failed\nDelta API   300ms\nGamma API  Failed\nbeta API    300ms\n");
    ASSERT_EQ(machine.http.requests.size(), 3);
    for (const auto& request : machine.http.requests) {
        EXPECT_TRUE(request.method == HttpMethod::Head && request.timeout == 5s && request.headers.empty());
        EXPECT_EQ(request.cachePolicy, platform::HttpCachePolicy::Reload);
    }
    manager.runAllTests();
    EXPECT_EQ(manager.nodes[3].status.kind, NodeStatus::Kind::idle);
}

TEST_F(NetworkDiagnosticTest, ADocumentThatCannotBeReadGivesNothingToTest) {
    for (const auto* document : {"", "[]", "{}", R"({"sources":[{"name":"A","url_template":"https://a.test"},3]})"}) {
        test::ship(machine, document);
        NetworkDiagnosticManager manager(machine.platform());
        manager.runAllTests();
        EXPECT_FALSE(manager.isTesting) << document;
        EXPECT_EQ(manager.report(), "Glintar 1.2.3\n") << document;
    }
}

TEST_F(NetworkDiagnosticTest, ItsWindowOpensOnceAndClosingItEndsTheRun) {
    platform::VirtualDesktop desktop{machine.notifications};
    NetworkDiagnosticManager* manager = nullptr;
    DiagnosticsWindowController controller(machine.platform(), desktop.desktop(), [&](auto& shown) {
        manager = &shown;
        return std::make_unique<platform::View>();
    });
    controller.openWindow();
    manager->runAllTests();
    controller.openWindow();
    ASSERT_EQ(desktop.windows.windows.size(), 1);
    auto& window = *desktop.windows.windows[0];
    EXPECT_TRUE(window.isCentered && window.ordersFront == 2 && window.title == "Network Diagnostics");
    window.close();
    machine.advance(10s);
    EXPECT_EQ(machine.http.requests.size(), 1);
    controller.openWindow();
    EXPECT_EQ(desktop.windows.windows.size(), 2);
    EXPECT_FALSE(manager->isTesting);
}

TEST(LatencyColorTest, GrowsWarmer) {
    using enum presenter::SystemColor;
    for (const auto& [latency, color] :
         {std::pair{-1ms, Red}, {0ms, Green}, {199ms, Green}, {200ms, Orange}, {799ms, Orange}, {800ms, Red}}) {
        EXPECT_EQ(latencyColor(latency), color) << latency.count();
    }
}

}  // namespace
}  // namespace glintar::diagnostics
