#include "config/Coin.h"
#include "config/CoinCatalogue.h"
#include "platform/virtual/VirtualPlatform.h"
#include "text/Address.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>

namespace glintar::config {
namespace {

constexpr std::string_view kTwo = R"([{"id":"00112233-4455-6677-8899-AABBCCDDEEFF","displayName":"BTC",)"
                                  R"("apiId":"bitcoin","referencePrice":65000.5},)"
                                  R"({"id":"10112233-4455-6677-8899-AABBCCDDEEFF","displayName":"é\"","apiId":""}])";

TEST(CoinTest, WritesTheStoredFormAndReadsItBack) {
    const std::vector<Coin> coins{
        {.id = "00112233-4455-6677-8899-aabbccddeeff",
         .displayName = "BTC",
         .apiId = "bitcoin",
         .referencePrice = 65000.5},
        {.id = "10112233-4455-6677-8899-AABBCCDDEEFF", .displayName = "é\"", .apiId = "", .referencePrice = {}},
    };
    EXPECT_EQ(encodeCoins(coins), kTwo);
    const auto read = decodeCoins(std::string(kTwo));
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ(encodeCoins(*read), kTwo);
    EXPECT_EQ(read->at(0).referencePrice, 65000.5);
    EXPECT_EQ(read->at(1).referencePrice, std::nullopt);
    EXPECT_THAT(encodeCoins({{.id = "x", .displayName = "", .apiId = "", .referencePrice = 0}}),
                testing::HasSubstr(R"("referencePrice":0})"));
    EXPECT_EQ(encodeCoins({}), "[]");
}

TEST(CoinTest, ReadsIdentifiersInAnyCaseAndAnEmptyReferencePrice) {
    const auto lower = text::replaceAll(kTwo, "AABBCCDDEEFF", "aabbccddeeff");
    const auto read = decodeCoins(text::replaceAll(lower, "65000.5", "null"));
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ(read->at(0).id, "00112233-4455-6677-8899-AABBCCDDEEFF");
    EXPECT_EQ(read->at(0).referencePrice, std::nullopt);
}

TEST(CoinTest, OneBadElementRefusesTheList) {
    struct Case {
        std::string_view what;
        std::string_view with;
    };
    for (const auto& [what, with] : {
             Case{R"("id":"1)", R"("ID":"1)"},
             {R"("displayName":"BTC",)", ""},
             {R"("apiId":"")", R"("apiId":7)"},
             {"65000.5", R"("65000.5")"},
             {"10112233-", "1011223-3"},
             {"10112233-", "10112233A"},
             {"10112233-", "1011223G-"},
             {R"(,{"id")", R"(,null,{"id")"},
             {R"("}])", R"("})"},
         }) {
        const std::string text = text::replaceAll(kTwo, what, with);
        ASSERT_NE(text, kTwo) << what;
        EXPECT_FALSE(decodeCoins(text)) << text;
    }
    EXPECT_FALSE(decodeCoins("{}"));
    EXPECT_FALSE(decodeCoins(""));
}

TEST(CoinTest, LoadsTheSavedListOrTheDefault) {
    platform::VirtualPlatform machine;
    const auto load = [&] { return loadSavedCoins(machine.platform()); };

    const auto fresh = load();
    ASSERT_EQ(fresh.size(), 1u);
    EXPECT_EQ(fresh[0].displayName + " " + fresh[0].apiId, "BTC bitcoin");
    EXPECT_EQ(fresh[0].referencePrice, 0);
    EXPECT_THAT(fresh[0].id,
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));

    machine.preferences.setData(kSavedCoinsKey, kTwo);
    EXPECT_EQ(encodeCoins(load()), kTwo);
    machine.preferences.setData(kSavedCoinsKey, "[]");
    EXPECT_TRUE(load().empty()) << "an empty list is the user's choice";
    machine.preferences.setData(kSavedCoinsKey, text::replaceAll(kTwo, R"("apiId")", R"("api")"));
    EXPECT_EQ(load().size(), 1u);
    EXPECT_EQ(load().size(), 1u);
    EXPECT_EQ(machine.console.count("[0].apiId: missing"), 1) << "what is wrong is said once";
    machine.preferences.setData(kSavedCoinsKey, "[{]");
    load();
    EXPECT_EQ(machine.console.count("(at byte 2)"), 1);
    machine.preferences.setString(kSavedCoinsKey, kTwo);
    EXPECT_EQ(load().size(), 1u) << "a text is not data";
}

std::string listed(const CoinCatalogue& catalogue) {
    std::string text;
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const CoinEntry entry = catalogue[i];
        text += fmt::format("{}/{}/{};", entry.id, entry.symbol, entry.name);
    }
    return text;
}

TEST(CoinCatalogueTest, PacksEntriesHoweverTheyAreWritten) {
    const std::string length127(127, 'a');
    const std::string length128(128, 'b');
    const std::string length20000(20000, 'c');
    struct Case {
        std::string json;
        std::string entries;
    };
    for (const auto& [json, entries] : {
             Case{R"([{"id":"i","symbol":"s","name":"n"},{"id":"j","symbol":"t","name":"o"}])", "i/s/n;j/t/o;"},
             {R"([{"name":"long name","symbol":"s","id":"an id"},{"symbol":"t","id":"j","name":"o"}])",
              "an id/s/long name;j/t/o;"},
             {R"([{"id":"old","symbol":"s","id":5,"name":"n","id":"the new one"}])", "the new one/s/n;"},
             {R"([{"id":"","symbol":"","name":""},{"id":"","symbol":"","name":"x"}])", "//;//x;"},
             {R"([{"\u0069d":"\ud83d\ude00","symbol":"c:\\memes","name":"\u0000é"}])",
              std::string("😀/c:\\memes/\0é;", 18)},
             {R"([{"x":{"id":7,"id":"no","y":[{"name":1}]},"id":"i","symbol":"s","z":[["q"]],"name":"n","w":null}])",
              "i/s/n;"},
             {fmt::format(R"([{{"id":"{0}","symbol":"{1}","name":"{2}"}},{{"name":"{0}","id":"{2}","symbol":"{1}"}}])",
                          length127, length128, length20000),
              fmt::format("{0}/{1}/{2};{2}/{1}/{0};", length127, length128, length20000)},
             {" [ ] ", ""},
         }) {
        const auto catalogue = CoinCatalogue::decode(json);
        ASSERT_TRUE(catalogue) << catalogue.error();
        EXPECT_EQ(listed(*catalogue), entries);
    }
}

TEST(CoinCatalogueTest, OneBadElementRefusesTheDocument) {
    struct Case {
        const char* json;
        const char* error;
    };
    constexpr const char* kName = "[1].name: missing or no text";
    for (const auto& [element, error] : {
             Case{R"({"id":"i","symbol":"s"})", kName},
             {R"({"id":"i","symbol":"s","name":1})", kName},
             {R"({"id":"i","symbol":"s","name":["n"]})", kName},
             {R"({"id":"i","symbol":"s","name":{"name":"n"}})", kName},
             {R"({"id":"i","symbol":"s","name":"n","name":{}})", kName},
             {R"({"symbol":"s","name":"n"})", "[1].id: missing or no text"},
             {R"("text")", "[1]: not an object"},
             {"7", "[1]: not an object"},
         }) {
        const auto catalogue =
            CoinCatalogue::decode(fmt::format(R"([{{"id":"a","symbol":"b","name":"c"}},{}])", element));
        ASSERT_FALSE(catalogue) << element;
        EXPECT_EQ(catalogue.error(), error) << element;
    }
    for (const std::string bad : {"", "{}", "7", R"([{"id":"a","symbol":"b","name":"c"}] x)", R"([{"id":)"}) {
        EXPECT_FALSE(CoinCatalogue::decode(bad)) << bad;
    }
}

constexpr const char* kCachedPath = "/home/u/documents/coingecko_coins_list.json";
constexpr const char* kShippedPath = "/bundle/coingecko_coins_list.json";

/// What `files` holds is there and reads; a text that begins with "!" is there and fails with what follows.
struct LoadCase {
    const char* name;
    std::map<std::string, std::string> files;
    std::string entries;
    std::vector<std::string> lines;
};

TEST(CoinCatalogueTest, LoadsTheUsersCopyBeforeTheShippedOne) {
    const std::string one = R"([{"id":"a","symbol":"b","name":"c"}])";
    const std::string two = R"([{"id":"d","symbol":"e","name":"f"},{"id":"g","symbol":"h","name":"i"}])";
    const std::string fromCopy = "✅ [CoinList] 成功加载 Documents 缓存列表";
    const std::string fromBundle = "📦 [CoinList] 缓存为空，加载 Bundle 出厂默认列表";
    const std::string copyUnread = "⚠️ [CoinList] 缓存文件存在但读取失败: Is a directory";
    const std::string noBundle = "❌ [Fatal] 严重错误：Bundle 里也找不到 coingecko_coins_list.json！";
    const std::string oneCoin = "📊 [CoinList] 数据解析完成，共 1 个币种";
    const std::string broken = "❌ [CoinList] JSON 解析错误: Invalid value. (at byte 0)";
    for (const auto& [name, files, entries, lines] : {
             LoadCase{"both", {{kCachedPath, one}, {kShippedPath, two}}, "a/b/c;", {fromCopy, oneCoin}},
             {"shipped only", {{kShippedPath, one}}, "a/b/c;", {fromBundle, oneCoin}},
             {"copy unreadable",
              {{kCachedPath, "!Is a directory"}, {kShippedPath, one}},
              "a/b/c;",
              {copyUnread, fromBundle, oneCoin}},
             {"copy broken", {{kCachedPath, "x"}, {kShippedPath, one}}, "", {fromCopy, broken}},
             {"shipped broken", {{kShippedPath, "x"}}, "", {fromBundle, broken}},
             {"shipped unreadable", {{kShippedPath, "!EIO"}}, "", {"❌ [CoinList] Bundle 文件读取失败: EIO"}},
             {"none", {}, "", {noBundle}},
             {"copy unreadable, nothing shipped", {{kCachedPath, "!Is a directory"}}, "", {copyUnread, noBundle}},
         }) {
        platform::VirtualPlatform machine;
        for (const auto& [path, text] : files) {
            if (text.starts_with('!')) {
                machine.files.unreadable[path] = text.substr(1);
            } else {
                machine.files.contents[path] = text;
            }
        }
        EXPECT_EQ(listed(loadCoinCatalogue(machine.platform())), entries) << name;
        std::vector<std::string> printed;
        for (const auto& line : machine.console.lines) {
            EXPECT_EQ(line.path, platform::Console::Path::Plain) << name;
            printed.push_back(line.text);
        }
        EXPECT_EQ(printed, lines) << name;
    }
    platform::VirtualPlatform homeless;
    homeless.directories.documentsFolder.reset();
    EXPECT_EQ(listed(loadCoinCatalogue(homeless.platform())), "");
}

}  // namespace
}  // namespace glintar::config
