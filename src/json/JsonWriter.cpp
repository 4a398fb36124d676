#include "json/JsonWriter.h"

#include "text/Unicode.h"

#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>

namespace glintar::json {

struct Writer::Sink {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer{buffer};
};

Writer::Writer() : sink_(std::make_unique<Sink>()) {}
Writer::~Writer() = default;

Writer& Writer::beginObject() {
    sink_->writer.StartObject();
    return *this;
}

Writer& Writer::endObject() {
    sink_->writer.EndObject();
    return *this;
}

Writer& Writer::beginArray() {
    sink_->writer.StartArray();
    return *this;
}

Writer& Writer::endArray() {
    sink_->writer.EndArray();
    return *this;
}

Writer& Writer::key(std::string_view name) {
    return string(name);
}

Writer& Writer::string(std::string_view text) {
    const std::string valid = text::validUtf8(text);
    sink_->writer.String(valid.data(), static_cast<rapidjson::SizeType>(valid.size()));
    return *this;
}

Writer& Writer::number(double value) {
    if (!std::isfinite(value)) {
        return null();
    }
    // RapidJSON's own form is not always the shortest, and says "0.0" for 0.
    const auto text = fmt::format("{}", value);
    sink_->writer.RawValue(text.data(), text.size(), rapidjson::kNumberType);
    return *this;
}

Writer& Writer::integer(std::int64_t value) {
    sink_->writer.Int64(value);
    return *this;
}

Writer& Writer::boolean(bool value) {
    sink_->writer.Bool(value);
    return *this;
}

Writer& Writer::null() {
    sink_->writer.Null();
    return *this;
}

std::string_view Writer::text() const {
    return {sink_->buffer.GetString(), sink_->buffer.GetSize()};
}

}  // namespace glintar::json
