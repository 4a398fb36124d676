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
    machine.registry.clear();
    shipFees(R"([{"id":"eth","name":"","url":"https://eth.test","price_path":"f","divider":1e-300}])");
    machine.http.answer("eth.test", R"({"f":1e300})");
    EXPECT_EQ(fetch(), std::nullopt) << "nobody pays without end";
}

/// What the user of any build reads, and what only a debug build adds.
std::string described(const std::vector<platform::VirtualConsole::Line>& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += (line.path == platform::Console::Path::Plain ? "P " : "D ") + line.text + "\n";
    }
    return text;
}

TEST_F(GasFeeTest, EveryRequestAndFailureLeavesItsLines) {
    test::ship(machine);
    CryptoService::shared(machine.platform());
    const std::string asked =
        "D 🔍 [Gas Debug] 正在查找 Gas 配置 (SourceIndex: 0)...\n"
        "D 🚀 [Gas Debug] 发起请求: https://eth.test/gas\n"
        "D   [Gas Debug] - Price Path: result.average\n"
        "D   [Gas Debug] - Divider: 1.0\n";
    const std::string page = "<" + std::string(300, 'x');
    std::string wide;  // 200 characters of three bytes
    for (int i = 0; i < 200; ++i) {
        wide += "币";
    }
    const auto status = [](int code) { return fmt::format("P 📡 [Gas Debug] HTTP Status Code: {}\n", code); };
    const auto raw = [](const std::string& body) { return "P 📄 [Gas Debug] Raw Response Body: " + body + "\n"; };
    const auto broken = [](const std::string& body, const std::string& why) {
        return "P 🔍 [Gas Debug] 服务器返回的真实内容是：\n" + body +
               "\nP ❌ [Gas Debug] JSON 解析彻底崩溃 (可能是返回了 HTML): " + why + "\n";
    };
    const std::string throttled = "P 🛑 [Gas Debug] 请求过于频繁 (Too Many Requests)，请增加刷新间隔！\n";
    struct Row {
        platform::HttpResult result;
        std::string lines;
    };
    using platform::HttpResponse;
    const std::string invalid = "Invalid value. (at byte 0)";
    for (const auto& row : {
             Row{HttpResponse{200, R"({"result":{"average":"7"}})"},
                 status(200) + raw(R"({"result":{"average":"7"}})") +
                     "P ✅ [Gas Debug] 成功! 原始值: 7.0 -> 最终值: 7.0\n"},
             Row{std::unexpected(platform::HttpError{platform::HttpError::Kind::Timeout, "too slow"}),
                 "P ❌ [Gas Debug] 网络请求错误: too slow\n"},
             Row{HttpResponse{200, ""}, status(200) + "P ❌ [Gas Debug] 数据为空\n"},
             Row{HttpResponse{200, "[1]"},
                 status(200) + raw("[1]") + "P ❌ [Gas Debug] JSON 格式不对 (不是 Dictionary)\n"},
             Row{HttpResponse{200, R"({"result":[{"average":1}]})"},
                 status(200) + raw(R"({"result":[{"average":1}]})") +
                     "P ❌ [Gas Debug] 解析失败：无法在路径 'result.average' 找到 Double 值\n"},
             Row{HttpResponse{429, page},
                 status(429) + throttled + raw(page.substr(0, 200) + "...") + broken(page, invalid)},
             Row{HttpResponse{200, wide}, status(200) + raw(wide) + broken(wide, invalid)},
             Row{HttpResponse{200, wide + "x"}, status(200) + raw(wide + "...") + broken(wide + "x", invalid)},
             Row{HttpResponse{200, "\xff"}, status(200) + "P ❌ [Gas Debug] JSON 解析彻底崩溃 (可能是返回了 HTML): " +
                                                "Invalid encoding in string. (at byte 1)" + "\n"},
         }) {
        machine.console.lines.clear();
        if (row.result) {
            machine.http.answer("eth.test", row.result->body, row.result->status);
        } else {
            machine.http.fail("eth.test", row.result.error());
        }
        EXPECT_EQ(fetch().has_value(), row.lines.contains("成功"));
        EXPECT_EQ(described(machine.console.lines), asked + row.lines);
    }
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
