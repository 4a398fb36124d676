#pragma once

#include "market/CryptoService.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gtest/gtest.h>

namespace glintar::market {

using namespace std::chrono_literals;

class CryptoServiceTest : public testing::Test {
protected:
    struct Outcome {
        int completions = 0;
        MarketDataMap quotes;
        std::optional<std::string> error;
    };

    CryptoServiceTest() { test::ship(machine); }

    CryptoService& service() { return CryptoService::shared(machine.platform()); }

    std::shared_ptr<Outcome> startFetch(const std::vector<config::Coin>& coins) {
        auto outcome = std::make_shared<Outcome>();
        service().fetchMarketData(coins, [outcome](MarketDataMap quotes, std::optional<std::string> error) {
            ++outcome->completions;
            outcome->quotes = std::move(quotes);
            outcome->error = std::move(error);
        });
        return outcome;
    }

    Outcome fetch(const std::vector<config::Coin>& coins) {
        const auto outcome = startFetch(coins);
        machine.advance(5s);
        EXPECT_EQ(outcome->completions, 1);
        return *outcome;
    }

    void select(std::string_view source) { machine.preferences.setString("selectedSourceID", source); }

    platform::VirtualPlatform machine;
    const std::vector<config::Coin> btc{test::coin("BTC", "bitcoin")};
    const std::vector<config::Coin> both{test::coin(" btc\n", "bitcoin"), test::coin("Eth", "ethereum")};
};

}  // namespace glintar::market
