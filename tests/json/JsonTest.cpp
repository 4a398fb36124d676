#include "json/Json.h"
#include "json/JsonEvents.h"
#include "json/JsonWriter.h"
#include "support/CommaLocale.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace glintar::json {
namespace {

using testing::HasSubstr;
using testing::Optional;
using namespace std::string_literals;

TEST(JsonTest, NumbersAreExactToTheLastBit) {
    for (const double value : {4.9406564584124654e-324, 1.7976931348623157e308, 0x1p64, -0x1p63}) {
        EXPECT_EQ(Document::parse(fmt::format("{}", value))->root().number(), value);
    }
}

TEST(JsonTest, ANumberBeyondDoubleIsNoneAndSpoilsNothingElse) {
    for (const auto* text : {"10e308", "-1.8e308"}) {
        const auto document = Document::parse(fmt::format("[{},7]", text));
        ASSERT_TRUE(document) << text;
        EXPECT_EQ(document->root().at(0).number(), std::nullopt) << text;
        EXPECT_EQ(document->root().at(0).string(), std::nullopt) << text;
        EXPECT_EQ(document->root().at(1).number(), 7);
    }
}

TEST(JsonTest, TellsNumbersFromTextsThatLookLikeThem) {
    const auto document = Document::parse(R"( { "a":"1" ,"b":1,"c":["2",2, -3],"d":"" } )");
    ASSERT_TRUE(document);
    const auto root = document->root();
    EXPECT_EQ(root.member("a")->kind(), Kind::String);
    EXPECT_EQ(root.member("b")->kind(), Kind::Number);
    EXPECT_EQ(root.member("c")->at(0).kind(), Kind::String);
    EXPECT_EQ(root.member("c")->at(2).number(), -3);
    EXPECT_EQ(root.member("d")->string(), "");
    EXPECT_EQ(Document::parse("\"5\"")->root().string(), "5");
}

TEST(JsonTest, AByteOrderMarkIsPassedOver) {
    const auto document = Document::parse("\xEF\xBB\xBF{\"a\":1}");
    ASSERT_TRUE(document);
    EXPECT_EQ(document->root().member("a")->number(), 1);
}

TEST(JsonTest, TakesTheLastNumbersOfAListOfNumbersOnly) {
    using Numbers = std::vector<double>;
    const auto document = Document::parse(R"([[1,2,3],[],[1,"2",3],["1",2,3],7,[1,10e308]])");
    ASSERT_TRUE(document);
    const auto lists = document->root();
    EXPECT_EQ(lists.at(0).lastNumbers(2), (Numbers{2, 3}));
    EXPECT_EQ(lists.at(0).lastNumbers(9), (Numbers{1, 2, 3}));
    EXPECT_EQ(lists.at(1).lastNumbers(2), Numbers{});
    for (std::size_t i = 2; i < lists.size(); ++i) {
        EXPECT_EQ(lists.at(i).lastNumbers(2), std::nullopt) << i;
    }
}

TEST(JsonTest, RefusesWhatIsNotJson) {
    for (const std::string& text : {""s, "{} {}"s, "{}\0{}"s, "[1e400]"s, "[\"\xC3\"]"s, "[\"\xC0\x80\"]"s,
                                    R"(["\ud83d"])"s, R"({"\uDFFF":1})"s}) {
        EXPECT_FALSE(Document::parse(text)) << text;
    }
}

TEST(JsonTest, SaysWhereAndWhyReadingStopped) {
    const auto document = Document::parse("[1, nul]");
    ASSERT_FALSE(document);
    EXPECT_EQ(document.error().offset, 7u);
    EXPECT_EQ(document.error().text(), "Invalid value. (at byte 7)");
}

TEST(JsonTest, KeepsStringsWholeWhateverTheyHold) {
    const auto document = Document::parse(R"(["\ud83d\ude00 \uD55c 한","a\u0000b","\"\\\/\n"])");
    ASSERT_TRUE(document);
    EXPECT_THAT(document->root().at(0).string(), Optional("😀 한 한"s));
    EXPECT_THAT(document->root().at(1).string(), Optional("a\0b"s));
    EXPECT_THAT(document->root().at(2).string(), Optional("\"\\/\n"s));
}

TEST(JsonTest, BoundsNestingInsteadOfTheStack) {
    const std::string deepest = std::string(kMaxDepth, '[') + std::string(kMaxDepth, ']');
    EXPECT_TRUE(Document::parse(deepest));
    EXPECT_FALSE(Document::parse("[" + deepest + "]"));
    std::string wide = "[";
    for (std::size_t i = 0; i < kMaxDepth; ++i) {
        wide += "[],{},";
    }
    EXPECT_TRUE(Document::parse(wide + "[]]")) << "depth is not the number of containers";

    std::string endless;
    while (endless.size() < 6'000'000) {
        endless += R"({"a":[)";
    }
    const auto document = Document::parse(endless);
    ASSERT_FALSE(document);
    EXPECT_THAT(document.error().description, HasSubstr("deep"));
    EXPECT_LT(document.error().offset, 6 * kMaxDepth) << "no more of it is read than needed";
    EXPECT_FALSE(Document::parse(std::string(1'000'000, '[')));
}

TEST(JsonTest, LooksUpWithoutConverting) {
    const auto document = Document::parse(
        R"({"n":1,"f":1.0,"big":9223372036854775808,"s":"2","b":true,"z":null,"a":[10,20],"o":{"k":1},"n":3})");
    ASSERT_TRUE(document);
    const View root = document->root();
    EXPECT_EQ(root.member("n")->integer(), 3) << "the last of two equal keys counts";
    EXPECT_EQ(root.member("f")->integer(), std::nullopt);
    EXPECT_EQ(root.member("big")->integer(), std::nullopt);
    EXPECT_EQ(root.member("s")->number(), std::nullopt);
    EXPECT_EQ(root.member("b")->boolean(), true);
    EXPECT_TRUE(root.member("z")->isNull());
    EXPECT_EQ(root.member("a")->member("k"), std::nullopt);
    EXPECT_EQ(root.member("o")->size(), 0u);
    EXPECT_EQ(root.member("missing"), std::nullopt);
}

TEST(JsonTest, ContainersOnlyOnRequest) {
    EXPECT_TRUE(Document::parse("5"));
    EXPECT_FALSE(parseContainer("5"));
    EXPECT_TRUE(parseContainer("[]"));
    EXPECT_TRUE(parseContainer("{}"));
}

/// Writes down what it receives, and stops at the word "stop".
class Recorder final : public EventHandler {
public:
    bool beginObject() override { return note("{"); }
    bool endObject() override { return note("}"); }
    bool beginArray() override { return note("["); }
    bool endArray() override { return note("]"); }
    bool key(std::string_view name) override { return note(fmt::format("{}:", name)); }
    bool string(std::string_view text) override { return note(fmt::format("'{}'", text)) && text != "stop"; }
    bool number(std::string_view digits) override { return note(digits); }
    bool boolean(bool value) override { return note(value ? "true" : "false"); }
    bool null() override { return note("null"); }

    std::string events;

private:
    bool note(std::string_view event) {
        events += fmt::format("{} ", event);
        return true;
    }
};

TEST(JsonEventsTest, TellsEveryPieceInOrder) {
    std::string text = R"({"a\u0041":[1,-2.5e3,18446744073709551616,true,false,null,"x\ty"],"b":{}})";
    Recorder recorder;
    ASSERT_TRUE(readEvents(text, recorder));
    EXPECT_EQ(recorder.events, "{ aA: [ 1 -2.5e3 18446744073709551616 true false null 'x\ty' ] b: { } } ");
}

TEST(JsonEventsTest, RefusesByTheSameRulesAsDocuments) {
    for (const std::string bad : {"[1] 2", "[\"\\udc00\"]", "[\"\xC3\"]"}) {
        std::string text = bad;
        Recorder recorder;
        EXPECT_FALSE(readEvents(text, recorder)) << bad;
    }
    std::string deep(1'000'000, '[');
    Recorder recorder;
    EXPECT_FALSE(readEvents(deep, recorder));
    EXPECT_EQ(recorder.events.size(), 2 * kMaxDepth);
}

TEST(JsonEventsTest, StopsWhenTheHandlerHasSeenEnough) {
    std::string text = R"(["go","stop","never"])";
    Recorder recorder;
    EXPECT_FALSE(readEvents(text, recorder));
    EXPECT_EQ(recorder.events, "[ 'go' 'stop' ");
}

TEST(JsonWriterTest, WritesOneCompactValue) {
    Writer writer;
    writer.beginObject().key("a").beginArray().number(1.5).integer(-3).boolean(true).null().endArray();
    writer.key("é\n\"").string("x\\\x01").key("o").beginObject().endObject().endObject();
    EXPECT_EQ(writer.text(), R"({"a":[1.5,-3,true,null],"é\n\"":"x\\\u0001","o":{}})");
}

TEST(JsonWriterTest, WritesNumbersShortAndExact) {
    const test::CommaLocale german;
    struct Case {
        double value;
        const char* text;
    };
    for (const auto& [value, text] : {
             Case{0, "0"},
             {0.1, "0.1"},
             {0.30000000000000004, "0.30000000000000004"},
             {65000, "65000"},
             {1e300, "1e+300"},
             {std::numeric_limits<double>::infinity(), "null"},
             {std::nan(""), "null"},
         }) {
        EXPECT_EQ(Writer().number(value).text(), text);
    }
}

TEST(JsonWriterTest, RepairsInvalidUtf8) {
    EXPECT_EQ(Writer().string("a\xFF\xC3z").text(), "\"a\uFFFD\uFFFDz\"");
}

}  // namespace
}  // namespace glintar::json
