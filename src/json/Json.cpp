#include "json/Json.h"

#include "json/GuardedReader.h"

#include <fmt/format.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cassert>
#include <charconv>
#include <utility>
namespace glintar::json {

namespace {

const rapidjson::Value& valueOf(const void* value) {
    return *static_cast<const rapidjson::Value*>(value);
}

/// Numbers are kept as they are written, as strings whose length has this bit set: most are never asked for.
constexpr rapidjson::SizeType kNumberMark = rapidjson::SizeType{1} << 31;

std::string_view textOf(const rapidjson::Value& value) {
    return {value.GetString(), value.GetStringLength() & ~kNumberMark};
}

bool isNumber(const rapidjson::Value& value) {
    return value.IsString() && (value.GetStringLength() & kNumberMark) != 0;
}

bool isString(const rapidjson::Value& value) {
    return value.IsString() && !isNumber(value);
}

/// Passes everything on to the document, but marks the numbers.
class DocumentTarget {
public:
    explicit DocumentTarget(rapidjson::Document& document) : document_(document) {}

    bool Null() { return document_.Null(); }
    bool Bool(bool value) { return document_.Bool(value); }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool copy) {
        return document_.RawNumber(text, length | kNumberMark, copy);
    }
    bool String(const char* text, rapidjson::SizeType length, bool copy) {
        return document_.String(text, length, copy);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool copy) { return document_.Key(text, length, copy); }
    bool StartObject() { return document_.StartObject(); }
    bool EndObject(rapidjson::SizeType members) { return document_.EndObject(members); }
    bool StartArray() { return document_.StartArray(); }
    bool EndArray(rapidjson::SizeType elements) { return document_.EndArray(elements); }

private:
    rapidjson::Document& document_;
};

}  // namespace

std::string ParseError::text() const {
    return fmt::format("{} (at byte {})", description, offset);
}

Kind View::kind() const {
    switch (valueOf(value_).GetType()) {
        case rapidjson::kNullType:
            return Kind::Null;
        case rapidjson::kFalseType:
        case rapidjson::kTrueType:
            return Kind::Boolean;
        case rapidjson::kObjectType:
            return Kind::Object;
        case rapidjson::kArrayType:
            return Kind::Array;
        case rapidjson::kStringType:
            return isNumber(valueOf(value_)) ? Kind::Number : Kind::String;
        case rapidjson::kNumberType:
            break;  // never made: see kNumberMark
    }
    std::unreachable();
}

std::optional<double> View::number() const {
    const auto& value = valueOf(value_);
    return isNumber(value) ? text::parseDecimal(textOf(value)) : std::nullopt;
}

std::optional<std::int64_t> View::integer() const {
    const auto& value = valueOf(value_);
    if (!isNumber(value)) {
        return std::nullopt;
    }
    const auto digits = textOf(value);
    std::int64_t integer = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), integer);
    return error == std::errc() && end == digits.data() + digits.size() ? std::optional(integer) : std::nullopt;
}

std::optional<std::string_view> View::string() const {
    const auto& value = valueOf(value_);
    return isString(value) ? std::optional(textOf(value)) : std::nullopt;
}

std::optional<bool> View::boolean() const {
    const auto& value = valueOf(value_);
    return value.IsBool() ? std::optional(value.GetBool()) : std::nullopt;
}

std::optional<View> View::member(std::string_view key) const {
    const auto& value = valueOf(value_);
    if (!value.IsObject()) {
        return std::nullopt;
    }
    for (auto member = value.MemberEnd(); member != value.MemberBegin();) {
        --member;
        if (textOf(member->name) == key) {
            return View(&member->value);
        }
    }
    return std::nullopt;
}

std::size_t View::size() const {
    const auto& value = valueOf(value_);
    return value.IsArray() ? value.Size() : 0;
}

View View::at(std::size_t index) const {
    assert(index < size());
    return View(&valueOf(value_)[static_cast<rapidjson::SizeType>(index)]);
}

std::optional<std::vector<double>> View::lastNumbers(std::size_t count) const {
    const auto& array = valueOf(value_);
    if (!array.IsArray() || !std::all_of(array.Begin(), array.End(), isNumber)) {
        return std::nullopt;
    }
    std::vector<double> numbers;
    numbers.reserve(std::min<std::size_t>(count, array.Size()));
    for (auto i = array.Size() - static_cast<rapidjson::SizeType>(numbers.capacity()); i < array.Size(); ++i) {
        const auto number = text::parseDecimal(textOf(array[i]));
        if (!number) {
            return std::nullopt;
        }
        numbers.push_back(*number);
    }
    return numbers;
}

struct Document::Storage {
    std::string text;  // strings of the document lie in it
    rapidjson::Document document;
};

Document::Document(std::unique_ptr<Storage> storage) : storage_(std::move(storage)) {}
Document::Document(Document&&) noexcept = default;
Document& Document::operator=(Document&&) noexcept = default;
Document::~Document() = default;

std::expected<Document, ParseError> Document::parse(std::string text) {
    auto storage = std::make_unique<Storage>();
    storage->text = std::move(text);
    std::optional<ParseError> error;
    auto generate = [&](rapidjson::Document& document) {
        DocumentTarget target(document);
        error = readInto(storage->text, target);
        return !error;
    };
    storage->document.Populate(generate);
    if (error) {
        return std::unexpected(std::move(*error));
    }
    return Document(std::move(storage));
}

View Document::root() const {
    return View(static_cast<const rapidjson::Value*>(&storage_->document));
}

std::expected<Document, ParseError> parseContainer(std::string text) {
    auto document = Document::parse(std::move(text));
    if (document && !document->root().isObject() && !document->root().isArray()) {
        return std::unexpected(ParseError{"The document is neither an object nor an array.", 0});
    }
    return document;
}

}  // namespace glintar::json
