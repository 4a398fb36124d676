#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace glintar::json {

/// Writes one compact JSON value. Numbers come out in the shortest form that reads back to the same double; a number
/// that JSON cannot hold (infinite, not a number) is written as null. Invalid UTF-8 is replaced by U+FFFD.
///
/// Calls must form a value: in an object, `key` before each member.
class Writer {
public:
    Writer();
    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    Writer& beginObject();
    Writer& endObject();
    Writer& beginArray();
    Writer& endArray();
    Writer& key(std::string_view name);
    Writer& string(std::string_view text);
    Writer& number(double value);
    Writer& integer(std::int64_t value);
    Writer& boolean(bool value);
    Writer& null();

    /// The text written so far.
    [[nodiscard]] std::string_view text() const;

private:
    struct Sink;
    std::unique_ptr<Sink> sink_;
};

}  // namespace glintar::json
