#include "config/AppConfig.h"
#include "config/Coin.h"
#include "demo/DemoSession.h"
#include "platform/qtcore/QtPreferences.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/TemporaryFolder.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <cstdlib>

namespace glintar::demo {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class DemoSessionTest : public testing::Test {
protected:
    DemoSessionTest() {
        fs::create_directory(temporary);
        setenv("TMPDIR", temporary.c_str(), 1);
    }
    ~DemoSessionTest() override { unsetenv("TMPDIR"); }

    [[nodiscard]] bool isTidy() const { return fs::is_empty(temporary); }

    test::TemporaryFolder folder;
    const fs::path temporary = folder.path() / "temporary";
};

TEST_F(DemoSessionTest, OffersAMarketAndAProfileThatAsksIt) {
    {
        auto session = DemoSession::start(GLINTAR_MARKET_PROGRAM);
        ASSERT_TRUE(session) << session.error();
        const auto document = config::decodeAppConfig(test::readFile(session->resources() / "api_endpoints.json"));
        ASSERT_TRUE(document) << document.error();

        platform::VirtualConsole console;
        const platform::QtPreferences preferences(session->configHome() / "glintar/glintar.conf", console);
        EXPECT_TRUE(document->source(preferences.string("selectedSourceID").value()));
        const auto coins = config::decodeCoins(preferences.data("savedCoins").value());
        ASSERT_TRUE(coins) << coins.error();
        ASSERT_EQ(coins->size(), 3);
        EXPECT_EQ((*coins)[2].apiId, "solana");
        EXPECT_TRUE(preferences.boolean("showGasFee"));
        EXPECT_FALSE(preferences.boolean("showHighLow24h"));
        EXPECT_TRUE(fs::is_directory(session->cacheHome() / "glintar"));

        const auto& address = document->source("binance")->url_template;
        ASSERT_TRUE(address.starts_with(session->address()));
        EXPECT_EQ(httplib::Client(session->address()).Get("/mempool/api/v1/fees/recommended")->status, 200);
    }
    EXPECT_TRUE(isTidy());
}

TEST_F(DemoSessionTest, ExplainsAMarketThatDoesNotComeUpAndLeavesNothing) {
    struct Row {
        std::string script;  // instead of the market; empty for no program at all
        std::string error;
    };
    for (const Row& row : {Row{"", "No such file"}, Row{"exit 3", "ended at once"}, Row{"echo hello", "\"hello\""},
                           Row{"exec sleep 60", "too long"}}) {
        const fs::path program = folder.path() / "glintar-demo-market";
        if (!row.script.empty()) {
            std::ofstream(program) << "#!/bin/sh\n" << row.script << "\n";
            fs::permissions(program, fs::perms::owner_all);
        }
        const auto session = DemoSession::start(program, row.script.starts_with("exec") ? 200ms : 10s);
        ASSERT_FALSE(session) << row.script;
        EXPECT_TRUE(session.error().contains(row.error)) << session.error();
        EXPECT_TRUE(isTidy()) << row.script;
    }
}

}  // namespace
}  // namespace glintar::demo
