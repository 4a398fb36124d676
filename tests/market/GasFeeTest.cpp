#include <gtest/gtest.h>

#include "market/CryptoService.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

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
}

TEST_F(GasFeeTest, TheValueIsDividedAndReported) {
    struct Row {
        std::string divider, body;
        double fee;
        std::string line;
    };
    for (const auto& row :
         {Row{"1000000000", R"({"f":5000000000})", 5, "✅ [Gas Debug] 成功! 原始值: 5000000000.0 -> 最终值: 5.0"},
          Row{"0", R"({"f":"12"})", 12, "✅ [Gas Debug] 成功! 原始值: 12.0 -> 最终值: 12.0"},
          Row{"-3", R"({"f":0.5})", 0.5, "✅ [Gas Debug] 成功! 原始值: 0.5 -> 最终值: 0.5"}}) {
        machine.registry.clear();
        shipFees(R"([{"id":"eth","name":"","url":"https://eth.test","price_path":"f","divider":)" + row.divider + "}]");
        machine.http.answer("eth.test", row.body, 500);  // the status decides nothing
        EXPECT_EQ(fetch(), row.fee);
        EXPECT_TRUE(machine.console.printed(row.line)) << row.line;
        EXPECT_TRUE(machine.console.printed("📄 [Gas Debug] Raw Response Body: " + row.body));
        EXPECT_TRUE(machine.console.printed("📡 [Gas Debug] HTTP Status Code: 500"));
    }
}

TEST_F(GasFeeTest, EveryFailureLeavesItsLines) {
    test::ship(machine);
    struct Row {
        platform::HttpResult result;
        std::vector<std::string> lines;
    };
    using platform::HttpResponse;
    const std::string longPage = "<" + std::string(300, 'x');
    for (const auto& row : {
             Row{std::unexpected(platform::HttpError{platform::HttpError::Kind::Timeout, "too slow"}),
                 {"❌ [Gas Debug] 网络请求错误: too slow"}},
             Row{HttpResponse{200, ""}, {"📡 [Gas Debug] HTTP Status Code: 200", "❌ [Gas Debug] 数据为空"}},
             Row{HttpResponse{200, "[1]"}, {"❌ [Gas Debug] JSON 格式不对 (不是 Dictionary)"}},
             Row{HttpResponse{200, R"({"result":[{"average":1}]})"},
                 {"❌ [Gas Debug] 解析失败：无法在路径 'result.average' 找到 Double 值"}},
             Row{HttpResponse{429, longPage},
                 {"📡 [Gas Debug] HTTP Status Code: 429",
                  "🛑 [Gas Debug] 请求过于频繁 (Too Many Requests)，请增加刷新间隔！",
                  "📄 [Gas Debug] Raw Response Body: " + longPage.substr(0, 200) + "...",
                  "🔍 [Gas Debug] 服务器返回的真实内容是：\n" + longPage}},
         }) {
        machine.console.lines.clear();
        if (row.result) {
            machine.http.answer("eth.test", row.result->body, row.result->status);
        } else {
            machine.http.fail("eth.test", row.result.error());
        }
        EXPECT_FALSE(fetch());
        for (const auto& line : row.lines) {
            EXPECT_TRUE(machine.console.printed(line)) << line;
        }
    }
    EXPECT_EQ(machine.console.count("❌ [Gas Debug] JSON 解析彻底崩溃 (可能是返回了 HTML): "), 1);
    machine.console.lines.clear();
    machine.http.answer("eth.test", "\xff\xfe");
    EXPECT_FALSE(fetch());
    EXPECT_EQ(machine.console.count("Raw Response Body"), 0) << "bytes that are no text are not shown";
    EXPECT_EQ(machine.console.count("JSON 解析彻底崩溃"), 1);
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
