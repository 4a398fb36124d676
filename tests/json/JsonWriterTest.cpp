#include "json/JsonWriter.h"
#include "support/CommaLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace glintar::json {
namespace {

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
