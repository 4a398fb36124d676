#include "json/Json.h"
#include "json/JsonWriter.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace glintar::json {
namespace {

TEST(JsonWriterTest, WritesOneCompactValue) {
    Writer writer;
    writer.beginObject().key("a").beginArray().number(1.5).integer(-3).boolean(true).null().endArray();
    writer.key("é\n\"").string("x\\\x01").key("o").beginObject().endObject().endObject();
    EXPECT_EQ(writer.text(), R"({"a":[1.5,-3,true,null],"é\n\"":"x\\\u0001","o":{}})");
}

TEST(JsonWriterTest, WritesNumbersShortAndExact) {
    struct Case {
        double value;
        const char* text;
    };
    for (const auto& [value, text] : {
             Case{0, "0"},
             {0.1, "0.1"},
             {65000, "65000"},
             {1e300, "1e+300"},
             {std::numeric_limits<double>::infinity(), "null"},
             {std::nan(""), "null"},
         }) {
        EXPECT_EQ(Writer().number(value).text(), text);
    }
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) {
            continue;
        }
        Writer writer;
        const auto document = Document::parse(std::string(writer.number(value).text()));
        ASSERT_TRUE(document) << writer.text();
        ASSERT_EQ(document->root().number(), value) << writer.text();
    }
}

TEST(JsonWriterTest, RepairsInvalidUtf8) {
    EXPECT_EQ(Writer().string("a\xFF\xC3z").text(), "\"a\uFFFD\uFFFDz\"");
}

}  // namespace
}  // namespace glintar::json
