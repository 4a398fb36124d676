#include "config/CoinCatalogue.h"
#include "platform/virtual/VirtualPlatform.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace glintar::config {
namespace {

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
             {R"({"id":"i","symbol":"s","Name":"n"})", kName},
             {R"({"id":"i","symbol":"s","name":1})", kName},
             {R"({"id":"i","symbol":"s","name":null})", kName},
             {R"({"id":"i","symbol":"s","name":true})", kName},
             {R"({"id":"i","symbol":"s","name":["n"]})", kName},
             {R"({"id":"i","symbol":"s","name":{"name":"n"}})", kName},
             {R"({"id":"i","symbol":"s","name":"n","name":{}})", kName},
             {R"({"symbol":"s","name":"n"})", "[1].id: missing or no text"},
             {"{}", "[1].id: missing or no text"},
             {R"("text")", "[1]: not an object"},
             {"[]", "[1]: not an object"},
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
}

TEST(CoinCatalogueTest, LoadsTheShippedOneWhereThereAreNoDocuments) {
    platform::VirtualPlatform machine;
    machine.directories.documentsFolder.reset();
    machine.files.contents[kShippedPath] = R"([{"id":"a","symbol":"b","name":"c"}])";
    EXPECT_EQ(loadCoinCatalogue(machine.platform()).size(), 1u);
}

}  // namespace
}  // namespace glintar::config
