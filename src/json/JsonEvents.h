#pragma once

#include "json/Json.h"

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

namespace glintar::json {

/// Receives the pieces of a document in their order, as they are read. Each operation says whether to go on.
class EventHandler {
public:
    virtual ~EventHandler() = default;

    virtual bool beginObject() = 0;
    virtual bool endObject() = 0;
    virtual bool beginArray() = 0;
    virtual bool endArray() = 0;
    virtual bool key(std::string_view name) = 0;
    virtual bool string(std::string_view text) = 0;
    virtual bool number(std::string_view digits) = 0;  ///< as it is written
    virtual bool boolean(bool value) = 0;
    virtual bool null() = 0;
};

/// Reads a document without building it, by the rules of `Document::parse`, in place: keys and strings lie inside
/// `text`, where they stay until the end. A handler may overwrite what lies before the newest of them that it still
/// needs. An error also when the handler stopped the reading.
[[nodiscard]] std::expected<void, ParseError> readEvents(std::string& text, EventHandler& handler);

}  // namespace glintar::json
