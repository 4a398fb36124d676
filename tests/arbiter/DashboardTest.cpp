#include "arbiter/ArbiterWindowController.h"
#include "arbiter/DashboardPlace.h"
#include "arbiter/DashboardStyle.h"
#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualPlatform.h"
#include "presenter/RefreshState.h"
#include "support/Market.h"

#include <gtest/gtest.h>

namespace glintar::arbiter {
namespace {

using namespace std::chrono_literals;
using platform::Rect;

TEST(PriceEntriesTest, AreSortedColouredAndTellTheirGaps) {
    struct Row {
        std::vector<double> prices;
        std::string expected;  ///< text, "+" for the highest or "-" for the lowest, gap
    };
    for (const auto& [prices, expected] : {
             Row{{}, ""},
             {{1}, "1.00"},
             {{0.99994}, "0.9999"},
             {{99, 100}, "100.00+ 1.000% 99.00-"},
             {{100, 99.9995, 50}, "100.00+ <0.001% 100.00 50.000% 50.00-"},
             {{2, 2}, "2.00+ 0.000% 2.00+"},
             {{0, -1, 0.5}, "0.5000+ 100.000% 0.0000 0.00% -1.0000-"},
             {{1, -1}, "1.00+ 200.000% -1.0000-"},
             {{1e15, 1}, "1000000000000000.00+ 100.000% 1.00-"},
         }) {
        std::vector<ArbiterPrice> quoted;
        for (const double price : prices) {
            quoted.push_back({.id = "", .platformName = "", .iconName = "", .price = price});
        }
        std::string shown;
        for (const auto& entry : priceEntries(quoted)) {
            shown += (shown.empty() ? "" : " ") + entry.text;
            shown += entry.rank == PriceRank::Highest ? "+" : entry.rank == PriceRank::Lowest ? "-" : "";
            shown += entry.gap ? " " + *entry.gap : "";
        }
        EXPECT_EQ(shown, expected);
    }
    EXPECT_EQ(dashboardStyle(platform::Appearance::Light).priceColor(PriceRank::Lowest), (platform::Color{0.7, 0, 0}));
}

TEST(DashboardPlaceTest, IsUnderItsAnchorAndOnItsScreen) {
    const Rect screen{100, 40, 1000, 700};
    struct Row {
        std::string name;
        platform::Size size;
        std::optional<Rect> anchor;
        Rect expected;
    };
    for (const auto& [name, size, anchor, expected] : {
             Row{"centred below", {200, 100}, Rect{500, 700, 40, 24}, {420, 595, 200, 100}},
             {"near the right edge", {200, 100}, Rect{1030, 700, 20, 24}, {890, 595, 200, 100}},
             {"near the left edge", {200, 100}, Rect{110, 700, 20, 24}, {110, 595, 200, 100}},
             {"taller than the space below", {200, 400}, Rect{500, 300, 40, 24}, {420, 50, 200, 400}},
             {"the top is free", {200, 100}, Rect{500, 900, 40, 24}, {420, 795, 200, 100}},
             {"an anchor at the bottom", {200, 100}, Rect{500, 40, 40, 24}, {420, 69, 200, 100}},
             {"larger than the screen", {3000, 2000}, Rect{500, 716, 40, 24}, {110, 50, 980, 680}},
             {"no anchor", {200, 100}, std::nullopt, {500, 340, 200, 100}},
         }) {
        EXPECT_EQ(dashboardFrame(size, anchor, screen), expected) << name;
    }
    EXPECT_EQ(resizedInPlace({500, 300, 100, 100}, {300, 500}, screen), (Rect{500, 50, 300, 500}));
    EXPECT_EQ(resizedInPlace({5000, 3000, 100, 100}, {300, 500}, screen), (Rect{790, 230, 300, 500}));
}

class DashboardTest : public testing::Test {
protected:
    DashboardTest() {
        test::ship(machine);
        machine.http.answer("binance.test/t", R"({"lastPrice":"100"})");
        nextFetchTime = machine.runLoop.now() + 60s;
    }

    void toggle() {
        controller.toggleWindow([this] { return anchor; }, coins, market::MarketDataMap{{"bitcoin", {.price = 101}}});
    }
    void setVisible(bool isVisible) {
        window().isVisible = isVisible;
        window().window->onVisibilityChanged();
    }
    platform::WindowState& window() { return *desktop.windows.windows.back(); }
    [[nodiscard]] std::vector<std::string> texts() const {
        std::vector<std::string> all;
        for (const auto& column : detail->columns()) {
            all.push_back(column.heading());
            for (const auto& entry : column.entries()) {
                all.push_back(entry.text);
            }
        }
        all.push_back(detail->statusText);
        return all;
    }

    platform::VirtualPlatform machine;
    platform::VirtualDesktop desktop{machine.notifications};
    std::vector<config::Coin> coins{test::coin("btc", "bitcoin")};
    std::optional<Rect> anchor = Rect{600, 776, 100, 24};
    ArbiterDetailView* detail = nullptr;
    ArbiterWindowController controller{machine.platform(), desktop.desktop(), [this](ArbiterDetailView& shown) {
                                           detail = &shown;
                                           return std::make_unique<platform::View>();
                                       }};
    presenter::RefreshState& state = presenter::RefreshState::shared(machine.platform());
    platform::Instant& nextFetchTime = state.nextFetchTime;
};

TEST_F(DashboardTest, FillsAsAnswersComeAndAsksAgainOnceAnInterval) {
    toggle();
    EXPECT_EQ(texts(), (std::vector<std::string>{"BTC", "Updated: 03:04:05"}));
    int changes = 0;
    detail->onChange = [&] { ++changes; };
    machine.advance(100ms);
    EXPECT_EQ(texts(), (std::vector<std::string>{"BTC", "101.00", "100.00", "Updated: 03:04:05"}));
    EXPECT_LE(changes, 3);
    machine.advance(59s);
    EXPECT_EQ(machine.http.asked("binance.test/t"), 1);

    machine.http.answer("binance.test/t", "silence");
    state.latestMarketData["bitcoin"].price = 105;
    nextFetchTime += 60s;
    machine.advance(2s);
    EXPECT_EQ(machine.http.asked("binance.test/t"), 2);
    EXPECT_EQ(texts().at(1), "105.00");
    EXPECT_EQ(texts().at(2), "100.00") << "the table is not emptied";
    machine.advance(9s);
    EXPECT_EQ(texts().size(), 3) << "but nothing stays for long";

    setVisible(false);
    nextFetchTime += 60s;
    machine.advance(60s);
    EXPECT_EQ(machine.http.asked("binance.test/t"), 2) << "nobody sees it";
    setVisible(true);
    machine.advance(1s);
    EXPECT_EQ(machine.http.asked("binance.test/t"), 3);
    machine.notifications.post(platform::kNetworkCameBack);
    machine.advance(2s);
    EXPECT_EQ(machine.http.asked("binance.test/t"), 4);

    const auto pending = machine.runLoop.pending();
    for (int minute = 0; minute < 60; ++minute) {
        nextFetchTime += 60s;
        machine.advance(60s);
    }
    EXPECT_EQ(machine.runLoop.pending(), pending);
}

TEST_F(DashboardTest, AToggleClosesItAndAnotherOpensItWithFreshRows) {
    for (int i = 0; i < 10; ++i) {  // while answers are on their way
        toggle();
        EXPECT_EQ(window().isVisible, i % 2 == 0);
        machine.advance(3ms);
    }
    machine.advance(1s);
    EXPECT_EQ(machine.runLoop.pending(), 0);
    EXPECT_EQ(window().window, nullptr) << "it is dropped";
    EXPECT_EQ(window().title, "Glintar dashboard");
    toggle();
    window().close();  // by Escape or the window manager
    toggle();
    EXPECT_TRUE(window().isVisible);
    detail->onClose();
    EXPECT_FALSE(window().isVisible);
}

TEST_F(DashboardTest, IsPlacedAnewUntilTheUserMovesIt) {
    toggle();
    EXPECT_EQ(window().frame, (Rect{450, 571, 400, 200}));
    window().fittingSize.height = 300;
    setVisible(false);
    window().window->onFittingSizeChanged();
    EXPECT_EQ(window().frame, (Rect{450, 571, 400, 200})) << "not while it is minimized";
    setVisible(true);
    EXPECT_EQ(window().frame, (Rect{450, 471, 400, 300}));

    anchor.reset();
    window().window->onSurroundingsChanged();
    machine.runLoop.settle();
    EXPECT_EQ(window().frame, (Rect{870, 471, 400, 300})) << "nobody knows a tray's place: beneath the strip";
    desktop.statusBar.onScreen = {};
    window().window->onFittingSizeChanged();
    EXPECT_EQ(window().frame, (Rect{440, 250, 400, 300})) << "or in the middle";

    window().window->onMoved();
    window().window->setFrame({30, 200, 400, 300});
    window().fittingSize.height = 400;
    window().window->onFittingSizeChanged();
    EXPECT_EQ(window().frame, (Rect{30, 100, 400, 400}));
}

TEST_F(DashboardTest, WithoutCoinsItWaits) {
    coins.clear();
    toggle();
    EXPECT_EQ(texts(), std::vector<std::string>{"Waiting for data..."});
    EXPECT_THAT(machine.http.requests, testing::IsEmpty());
}

}  // namespace
}  // namespace glintar::arbiter
