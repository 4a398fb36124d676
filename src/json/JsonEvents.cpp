#include "json/JsonEvents.h"

#include "json/GuardedReader.h"

namespace glintar::json {

namespace {

class EventTarget {
public:
    explicit EventTarget(EventHandler& handler) : handler_(handler) {}

    bool Null() { return handler_.null(); }
    bool Bool(bool value) { return handler_.boolean(value); }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool) { return handler_.number({text, length}); }
    bool String(const char* text, rapidjson::SizeType length, bool) { return handler_.string({text, length}); }
    bool Key(const char* text, rapidjson::SizeType length, bool) { return handler_.key({text, length}); }
    bool StartObject() { return handler_.beginObject(); }
    bool EndObject(rapidjson::SizeType) { return handler_.endObject(); }
    bool StartArray() { return handler_.beginArray(); }
    bool EndArray(rapidjson::SizeType) { return handler_.endArray(); }

private:
    EventHandler& handler_;
};

}  // namespace

std::expected<void, ParseError> readEvents(std::string& text, EventHandler& handler) {
    EventTarget target(handler);
    if (auto error = readInto(text, target)) {
        return std::unexpected(std::move(*error));
    }
    return {};
}

}  // namespace glintar::json
