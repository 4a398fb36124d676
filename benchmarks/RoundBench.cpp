// The same coins at every source: `glintar compare` beside curl, and reading what comes back beside its bare parse.

#include "arbiter/ArbitrageAnswers.h"
#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "config/AppConfig.h"
#include "json/GuardedReader.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/LoopbackServer.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>
#include <rapidjson/document.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <fstream>

namespace glintar::bench {

namespace {

using namespace std::chrono_literals;
using Words = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

constexpr int kSources = 12;
constexpr int kRounds = 25;
constexpr std::array<const char*, 5> kCoins{"BTC", "ETH", "SOL", "XRP", "DOGE"};

/// As an exchange answers about one pair.
std::string ticker(std::string_view pair) {
    return fmt::format(
        R"({{"symbol":"{}USDT","priceChange":"-94.99999800","priceChangePercent":"-95.960","weightedAvgPrice":)"
        R"("0.29628482","prevClosePrice":"0.10002000","lastPrice":"64012.55000000","lastQty":"200.00000000","bidPrice":)"
        R"("64012.54000000","bidQty":"100.00000000","askPrice":"64012.56000000","askQty":"100.00000000","openPrice":)"
        R"("99.00000000","highPrice":"100.00000000","lowPrice":"0.10000000","volume":"8913.30000000","quoteVolume":)"
        R"("15.30000000","openTime":1499783499040,"closeTime":1499869899040,"firstId":28385,"lastId":28460,"count":76}})",
        pair);
}

/// Twelve services, each with an address of its own, and the profile of a user of five coins who asks them all.
class Sources {
public:
    explicit Sources(std::chrono::milliseconds delay) {
        std::string sources, coins;
        for (const auto* coin : kCoins) {
            coins += fmt::format(
                R"({}{{\"id\":\"6F9619FF-8B86-4011-B42D-00C04FC96{:03}\",\"displayName\":\"{}\",\"apiId\":\"{}\"}})",
                coins.empty() ? "" : ",", coins.size(), coin, coin);
        }
        for (int number = 0; number < kSources; ++number) {
            auto& server = servers_.emplace_back();
            for (const auto* coin : kCoins) {
                server.on(fmt::format("/ticker/{}", coin), {.body = ticker(coin), .delay = delay});
                addresses.push_back(server.url(fmt::format("/ticker/{}", coin)));
            }
            sources += fmt::format(
                R"({}{{"id":"s{}","name":"S{}","supports_batch":false,"url_template":"{}","response_type":"dictionary",)"
                R"("price_path":"lastPrice"}})",
                number ? "," : "", number, number, server.url("/ticker/{SYMBOL}"));
        }
        write("DATA/glintar/remote_api_endpoints.json", fmt::format(R"({{"sources":[{}]}})", sources));
        write("CONFIG/glintar/glintar.conf",
              fmt::format("[General]\nselectedSourceID=s0\nsavedCoins=\"@ByteArray([{}])\"\n", coins));
    }

    [[nodiscard]] Words compare(const std::string& programs) const {
        Words words{"env", "-u", "DBUS_SESSION_BUS_ADDRESS", "-u", "http_proxy"};
        for (const auto* folder : {"CONFIG", "DATA", "CACHE"}) {
            words.push_back(fmt::format("XDG_{}_HOME={}/{}", folder, folder_.path().string(), folder));
        }
        words.insert(words.end(), {programs + "/glintar", "compare", "--format", "json"});
        return words;
    }

    Words addresses;

private:
    void write(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories((folder_.path() / name).parent_path());
        std::ofstream(folder_.path() / name) << text;
    }

    test::TemporaryFolder folder_;
    std::deque<support::LoopbackServer> servers_;
};

double wallMilliseconds(const Words& command) {
    const auto start = Clock::now();
    if (commandSeconds(command) < 0) {
        fmt::print(stderr, "bench: failed: {}\n", fmt::join(command, " "));
        std::exit(1);
    }
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void benchWholeRound(const std::string& programs, std::chrono::milliseconds delay) {
    const Sources sources(delay);
    const auto ours = sources.compare(programs);
    Words curl{"env", "-u", "http_proxy", "curl", "-s", "--parallel", "--parallel-immediate", "--parallel-max", "60"};
    curl.insert(curl.end(), sources.addresses.begin(), sources.addresses.end());
    std::vector<double> oursTimes, floorTimes;
    for (int round = 0; round < kRounds; ++round) {
        oursTimes.push_back(wallMilliseconds(ours));
        floorTimes.push_back(wallMilliseconds(curl));
    }
    printRow({fmt::format("compare, 12 sources x 5 coins, answers after {} ms", delay.count()), median(oursTimes),
              median(floorTimes), 1.1, "ms", "curl --parallel"});
}

void benchReading() {
    platform::VirtualPlatform machine;
    const config::SourceConfig source{
        .id = "s", .name = "S", .url_template = {}, .response_type = "dictionary", .price_path = "lastPrice"};
    std::vector<std::shared_ptr<arbiter::CoinArbitrageData>> rows;
    std::vector<std::string> bodies;
    for (const auto* coin : kCoins) {
        rows.push_back(
            std::make_shared<arbiter::CoinArbitrageData>(machine.platform(), config::Coin{coin, coin, coin, 0}));
        bodies.push_back(ticker(coin));
    }
    constexpr int kRepeats = 200 * kSources;
    const auto times = bench::compare(
        40,
        [&] {
            for (int repeat = 0; repeat < kRepeats; ++repeat) {
                for (std::size_t coin = 0; coin < rows.size(); ++coin) {
                    arbiter::parseSingleResult(bodies[coin], source, *rows[coin], machine.platform());
                }
                machine.advance(0ms);
            }
        },
        [&] {
            for (int repeat = 0; repeat < kRepeats; ++repeat) {
                for (std::string text : bodies) {
                    rapidjson::Document document;
                    rapidjson::InsituStringStream stream(text.data());
                    document.ParseStream<json::kReadFlags, rapidjson::UTF8<>>(stream);
                    if (document.HasParseError()) {
                        std::abort();
                    }
                }
            }
        });
    if (rows.front()->prices.empty()) {
        std::abort();
    }
    printRow(
        {"reading the round's 60 answers", times.ours * 1e6 / 200, times.floor * 1e6 / 200, 1.3, "us", "bare parse"});
}

}  // namespace

void benchRound(const std::string& programs) {
    benchReading();
    benchWholeRound(programs, 0ms);
    benchWholeRound(programs, 100ms);
}

}  // namespace glintar::bench
