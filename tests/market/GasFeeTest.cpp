#include "market/CryptoService.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gtest/gtest.h>

namespace glintar::market {
namespace {

using namespace std::chrono_literals;

class GasFeeTest : public testing::Test {
protected:
    std::optional<double> fetch() {
        int completions = 0;
        std::optional<double> fee;
        CryptoService::shared(machine.platform()).fetchGasPrice([&](std::optional<double> answer) {
            ++completions;
            fee = answer;
        });
        machine.advance(1s);
        EXPECT_EQ(completions, 1);
        return fee;
    }

    void shipFees(std::string_view gasConfigs) {
        test::ship(machine, fmt::format(R"({{"sources":[],"gas_configs":{}}})", gasConfigs));
    }

    platform::VirtualPlatform machine;
};

TEST_F(GasFeeTest, TheServiceIsChosenByAWordOfItsNetwork) {
    struct Row {
        std::string ids;
        int gasSource;
        std::string chosen;
    };
    for (const auto& [ids, gasSource, chosen] :
         {Row{"etherscan_gas mempool_fees", 1, "mempool_fees"}, Row{"etherscan_gas mempool_fees", 0, "etherscan_gas"},
          Row{"mempool_fees My_GAS", 7, "My_GAS"}, Row{"x BTC_y bitcoin", 1, "BTC_y"}, Row{"first second", 0, "first"},
          Row{"first second", 1, "first"}}) {
        SCOPED_TRACE(ids);
        machine.registry.clear();
        std::string configs;
        for (std::size_t at = 0; at < ids.size();) {
            const auto end = std::min(ids.find(' ', at), ids.size());
            configs += fmt::format(R"({}{{"id":"{}","name":"","url":"https://{}.test","price_path":"f","divider":1}})",
                                   at == 0 ? "" : ",", ids.substr(at, end - at), ids.substr(at, end - at));
            at = end + 1;
        }
        shipFees("[" + configs + "]");
        machine.preferences.setInteger("gasSource", gasSource);
        fetch();
        EXPECT_EQ(machine.http.requests.back().url, "https://" + chosen + ".test");
    }
    EXPECT_TRUE(machine.http.requests.back().headers.empty()) << "a fee request is a plain one";
    EXPECT_TRUE(machine.http.requests.back().originHeaders.empty());
}

TEST_F(GasFeeTest, TheValueIsDividedAndReported) {
    struct Row {
        std::string divider, body;
        double fee;
        std::string line;
    };
    for (const auto& row : {Row{"1000000000", R"({"f":5000000000})", 5, "原始值: 5000000000.0 -> 最终值: 5.0"},
                            Row{"0", R"({"f":"12"})", 12, "原始值: 12.0 -> 最终值: 12.0"},
                            Row{"-3", R"({"f":0.5})", 0.5, "原始值: 0.5 -> 最终值: 0.5"},
                            Row{"1", R"({"f":0.00005})", 0.00005, "原始值: 5e-05 -> 最终值: 5e-05"}}) {
        machine.registry.clear();
        shipFees(R"([{"id":"eth","name":"","url":"https://eth.test","price_path":"f","divider":)" + row.divider + "}]");
        machine.http.answer("eth.test", row.body, 500);  // the status decides nothing
        EXPECT_EQ(fetch(), row.fee);
        EXPECT_TRUE(machine.console.printed("✅ [Gas Debug] 成功! " + row.line)) << row.line;
    }
    EXPECT_EQ(machine.http.asked("eth.test"), 4) << "none was asked for twice";
    machine.registry.clear();
    shipFees(R"([{"id":"eth","name":"","url":"https://eth.test","price_path":"f","divider":1e-300}])");
    machine.http.answer("eth.test", R"({"f":1e300})");
    EXPECT_EQ(fetch(), std::nullopt) << "nobody pays without end";
}

TEST_F(GasFeeTest, EachFailureSaysWhatItWas) {
    test::ship(machine);
    const std::string page = "<" + std::string(300, 'x');
    std::string wide;  // 200 characters of three bytes
    for (int i = 0; i < 200; ++i) {
        wide += "币";
    }
    struct Row {
        int status;
        std::string body;
        std::vector<std::string> said;
    };
    for (const auto& [status, body, said] : {
             Row{200, "", {"Status Code: 200", "❌ [Gas Debug] 数据为空"}},
             Row{200, "[1]", {"Raw Response Body: [1]", "❌ [Gas Debug] JSON 格式不对 (不是 Dictionary)"}},
             Row{200, R"({"result":[1]})", {"❌ [Gas Debug] 解析失败：无法在路径 'result.average' 找到 Double 值"}},
             Row{429,
                 page,
                 {"🛑 [Gas Debug] 请求过于频繁", "Body: " + page.substr(0, 200) + "...", "真实内容是：\n" + page}},
             Row{200, wide, {"Body: " + wide, "JSON 解析彻底崩溃 (可能是返回了 HTML): Invalid value. (at byte 0)"}},
             Row{200, wide + "x", {"Body: " + wide + "..."}},
             Row{200, "\xff", {"Invalid encoding in string. (at byte 1)"}},
         }) {
        machine.console.lines.clear();
        machine.http.answer("eth.test", body, status);
        EXPECT_FALSE(fetch());
        for (const auto& text : said) {
            EXPECT_EQ(machine.console.count(text), 1) << text;
        }
    }
    machine.http.answer("eth.test", "<" + std::string(9000, 'x'));
    EXPECT_FALSE(fetch());
    EXPECT_EQ(machine.console.count("<" + std::string(1999, 'x')), 1);
    EXPECT_EQ(machine.console.count(std::string(2000, 'x')), 0) << "no log grows by whole pages";
    EXPECT_EQ(machine.console.count("[Gas Debug] 发起请求: https://eth.test/gas"), 2);
    machine.http.fail("eth.test", {platform::HttpError::Kind::Timeout, "too slow"});
    EXPECT_FALSE(fetch());
    EXPECT_TRUE(machine.console.printed("❌ [Gas Debug] 网络请求错误: too slow"));
}

TEST_F(GasFeeTest, WithoutAServiceNothingIsSent) {
    for (const std::string document :
         {R"({"sources":[]})", R"({"sources":[],"gas_configs":[]})", "nonsense",
          R"({"sources":[],"gas_configs":[{"id":"eth","name":"","url":"eth","price_path":"f","divider":1}]})"}) {
        machine.registry.clear();
        test::ship(machine, document);
        EXPECT_FALSE(fetch());
    }
    EXPECT_TRUE(machine.http.requests.empty());
    EXPECT_EQ(
        machine.console.count("❌ [Gas Debug] 失败：loadedConfig.gasConfigs 为空或 nil。请检查 api_endpoints.json"), 3);
    EXPECT_TRUE(machine.console.printed("❌ [Gas Debug] 失败：URL 无效 -> eth"));
}

}  // namespace
}  // namespace glintar::market
