#include "config/AppConfig.h"
#include "market/Extraction.h"
#include "market/ValuePath.h"
#include "platform/virtual/VirtualStores.h"
#include "support/Market.h"

#include <gmock/gmock.h>

namespace glintar::market {
namespace {

using testing::ElementsAre;
using testing::Key;

TEST(ValuePathTest, FindsWhatIsThere) {
    struct Row {
        std::string path, document;
        std::string expected;  ///< "number:…", "text:…", "other" or "none"
    };
    for (const auto& [path, document, expected] : {
             Row{"a.b", R"({"a":{"b":7}})", "number:7"},
             Row{"..a...b.", R"({"a":{"b":7}})", "number:7"},
             Row{"", R"({"a":1})", "none"},
             Row{"..", R"({"a":1})", "other"},
             Row{"a.c", R"({"a":{"b":7}})", "none"},
             Row{"a.b", R"({"a":7})", "none"},
             Row{"a.0", R"({"a":[7]})", "none"},
             Row{"a", R"({"a":1,"a":2})", "number:2"},
             Row{"a", R"({"a":"67000.5"})", "number:67000.5"},
             Row{"a", R"({"a":"+7.5E+4"})", "number:75000"},
             Row{"a", R"({"a":" 67000.5"})", "text: 67000.5"},
             Row{"a", R"({"a":"0x10"})", "text:0x10"},
             Row{"a", R"({"a":"nan"})", "text:nan"},
             Row{"a", R"({"a":"http://1"})", "text:http://1"},
             Row{"a", R"({"a":true})", "other"},
             Row{"a", R"({"a":null})", "other"},
         }) {
        const auto parsed = json::Document::parse(document);
        ASSERT_TRUE(parsed);
        const auto value = valueAtPath(path, parsed->root());
        std::string found = value ? "other" : "none";
        if (value && value->number()) {
            found = fmt::format("number:{}", *value->number());
        } else if (value && value->string()) {
            found = fmt::format("text:{}", *value->string());
        }
        EXPECT_EQ(found, expected) << path << " in " << document;
    }
}

config::SourceConfig source(std::string responseType) {
    return {.id = "s",
            .response_type = std::move(responseType),
            .id_mapping_path = "id",
            .image_path = "img.{ID}",
            .price_path = "p.{ID}",
            .change_path = "change",
            .high_path = "high",
            .low_path = "low",
            .sparkline_path = "spark"};
}

std::string numbers(int count) {
    std::string list;
    for (int i = 1; i <= count; ++i) {
        list += fmt::format("{}{}", list.empty() ? "" : ",", i);
    }
    return "[" + list + "]";
}

TEST(ExtractionTest, FillsEveryFieldThatIsThereAndOfItsKind) {
    platform::VirtualConsole console;
    const auto read = [&](const std::string& body) {
        return parseSingleResponse(body, source("object"), "btc", console);
    };
    const auto whole = read(R"({"p":{"btc":"2"},"img":{"btc":"https://x/1.png"},"change":-1,"high":"3","low":1,)"
                            R"("spark":)" +
                            numbers(168) + "}");
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->price, 2);
    EXPECT_EQ(whole->imageUrl, "https://x/1.png");
    EXPECT_EQ(whole->change24h, -1);
    EXPECT_EQ(whole->high24h, 3);
    EXPECT_EQ(whole->low24h, 1);
    ASSERT_EQ(whole->sparkline.value().size(), 24U);
    EXPECT_EQ(whole->sparkline->front(), 145);
    EXPECT_EQ(whole->sparkline->back(), 168);

    const auto poor = read(R"({"p":{"btc":2},"img":{"btc":12},"change":null,"high":[1],"low":"x","spark":[1,"2"]})");
    ASSERT_TRUE(poor) << "only the price is needed";
    EXPECT_FALSE(poor->imageUrl || poor->change24h || poor->high24h || poor->low24h || poor->sparkline);

    const auto brief = read(R"({"p":{"btc":2},"spark":[1,2]})");
    EXPECT_EQ(brief.value().sparkline.value(), (std::vector<double>{1, 2}));

    EXPECT_FALSE(read(R"({"p":{"eth":2}})")) << "another coin's price is none";
}

TEST(ExtractionTest, SingleAnswersComeInTheirShape) {
    platform::VirtualConsole console;
    struct Row {
        std::string type, body;
        bool isRead;
    };
    for (const auto& [type, body, isRead] :
         {Row{"array_first", R"([{"p":{"b":1}},{}])", true}, Row{"array_first", R"({"p":{"b":1}})", true},
          Row{"array_first", "[]", false}, Row{"array_first", R"([{"p":{"b":1}},7])", false},
          Row{"object", R"([{"p":{"b":1}}])", false}, Row{"whatever", R"({"p":{"b":1}})", true}}) {
        EXPECT_EQ(parseSingleResponse(body, source(type), "b", console).has_value(), isRead) << type << body;
    }
    EXPECT_TRUE(console.lines.empty()) << "a shape that does not fit is no news";
    EXPECT_FALSE(parseSingleResponse("<html>", source("object"), "b", console));
    EXPECT_FALSE(parseSingleResponse("7", source("object"), "b", console));
    EXPECT_EQ(console.count("❌ 解析错误: "), 2);
}

TEST(ExtractionTest, BatchAnswersComeInTheirShape) {
    platform::VirtualConsole console;
    const std::vector<config::Coin> coins{test::coin("A", "a"), test::coin("B", "b"), test::coin("C", "c")};
    const auto read = [&](const std::string& type, const std::string& body) {
        return parseBatchResponse(body, source(type), coins, console);
    };
    const auto array =
        read("array", R"([{"id":"a","p":{"a":1}},{"id":5,"p":{"5":1}},{"id":"1337","p":{"1337":1}},)"
                      R"({"p":{"a":1}},{"id":"b","p":{}},{"id":"z","p":{"z":3}},{"id":"a","p":{"a":2}}])");
    EXPECT_THAT(array, ElementsAre(Key("a"), Key("z")));
    EXPECT_EQ(array.at("a").price, 2) << "the later of two elements wins";
    EXPECT_TRUE(read("array", R"([{"id":"a","p":{"a":1}},7])").empty());
    auto unmapped = source("array");
    unmapped.id_mapping_path.reset();
    EXPECT_TRUE(parseBatchResponse(R"([{"id":"a","p":{"a":1}}])", unmapped, coins, console).empty());

    EXPECT_THAT(read("dictionary", R"({"a":{"p":{"a":1}},"b":7,"x":{"p":{"x":1}}})"), ElementsAre(Key("a")));
    EXPECT_TRUE(read("dictionary", "[]").empty());
    EXPECT_TRUE(read("object", R"({"a":{"p":{"a":1}}})").empty());
    EXPECT_TRUE(console.lines.empty());
    EXPECT_TRUE(read("array", std::string(100'000, '[')).empty());
    EXPECT_TRUE(read("array", "[{\"id\":\"\xff\"}]").empty());
    EXPECT_EQ(console.count("❌ 批量解析错误: "), 2);
}

}  // namespace
}  // namespace glintar::market
