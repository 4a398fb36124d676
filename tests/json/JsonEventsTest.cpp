#include "json/JsonEvents.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace glintar::json {
namespace {

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

}  // namespace
}  // namespace glintar::json
