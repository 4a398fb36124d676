#pragma once

#include "json/Json.h"
#include "text/Number.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::json {

/// Numbers come as text. Most of an answer's numbers are never asked for, and RapidJSON's own conversion goes wrong at
/// the edges: with kParseFullPrecisionFlag,
/// 184467440737095516155 reads as -2e264 (its 64-bit significand wraps around when it is rounded up) and 10e308 as
/// -3e-308. It still refuses a zero with an exponent above 308 and the largest doubles when all their 309 digits are
/// written out; no service sends these.
inline constexpr unsigned kReadFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                                       rapidjson::kParseValidateEncodingFlag | rapidjson::kParseNumbersAsStringsFlag;

/// Stands between RapidJSON's reader and a receiver of its events (`Target`), and refuses what the reader lets through.
template <class Target>
class Guard : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Guard<Target>> {
public:
    Guard(Target& target, bool checkSurrogates) : target_(target), checkSurrogates_(checkSurrogates) {}

    [[nodiscard]] const char* refusal() const { return refusal_; }

    bool Null() { return target_.Null(); }
    bool Bool(bool value) { return target_.Bool(value); }
    bool StartObject() { return enter() && target_.StartObject(); }
    bool StartArray() { return enter() && target_.StartArray(); }
    bool EndObject(rapidjson::SizeType members) {
        --depth_;
        return target_.EndObject(members);
    }
    bool EndArray(rapidjson::SizeType elements) {
        --depth_;
        return target_.EndArray(elements);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool copy) {
        return check({text, length}) && target_.Key(text, length, copy);
    }
    bool String(const char* text, rapidjson::SizeType length, bool copy) {
        return check({text, length}) && target_.String(text, length, copy);
    }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool copy) {
        return target_.RawNumber(text, length, copy);
    }

private:
    bool refuse(const char* why) {
        refusal_ = why;
        return false;
    }
    bool enter() { return ++depth_ <= kMaxDepth || refuse("Nested too deeply."); }

    /// The reader passes a lone "\uDC00" on, as three bytes that are no UTF-8.
    bool check(std::string_view text) {
        if (!checkSurrogates_) {
            return true;
        }
        for (std::size_t at = text.find('\xED'); at < text.size(); at = text.find('\xED', at + 1)) {
            if (static_cast<unsigned char>(text[at + 1]) >= 0xA0) {
                return refuse("The surrogate pair in string is invalid.");
            }
        }
        return true;
    }

    Target& target_;
    bool checkSurrogates_;
    std::size_t depth_ = 0;
    const char* refusal_ = nullptr;
};

/// Whether a "\uD..." escape stands anywhere in the text. One fast look over it spares looking at each string.
inline bool mayEscapeSurrogates(std::string_view text) {
    for (std::size_t at = text.find('\\'); at < text.size(); at = text.find('\\', at + 1)) {
        const std::string_view escape = text.substr(at, 3);
        if (escape == "\\uD" || escape == "\\ud") {
            return true;
        }
    }
    return false;
}

/// Whether the last character is cut off. The reader would take all its bytes before looking at any, from behind the
/// text.
inline bool endsInsideCharacter(std::string_view text) {
    constexpr std::array<unsigned char, 3> kFirstLeadThatNeedsMore{0xC0, 0xE0, 0xF0};
    for (std::size_t after = 0; after < kFirstLeadThatNeedsMore.size() && after < text.size(); ++after) {
        if (static_cast<unsigned char>(text[text.size() - 1 - after]) >= kFirstLeadThatNeedsMore[after]) {
            return true;
        }
    }
    return false;
}

/// Reads the whole text in place into the target.
template <class Target>
std::optional<ParseError> readInto(std::string& text, Target& target) {
    if (text.size() > std::numeric_limits<std::int32_t>::max()) {
        return ParseError{"The document is too long.", 0};
    }
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.erase(0, 3);  // a byte-order mark, which RFC 8259 (8.1) lets readers ignore
    }
    if (endsInsideCharacter(text)) {
        return ParseError{rapidjson::GetParseError_En(rapidjson::kParseErrorStringInvalidEncoding), text.size()};
    }
    Guard<Target> guard(target, mayEscapeSurrogates(text));
    rapidjson::InsituStringStream stream(text.data());
    rapidjson::Reader reader;
    const rapidjson::ParseResult result = reader.Parse<kReadFlags>(stream, guard);
    if (result.IsError()) {
        const char* const refusal = guard.refusal();
        return ParseError{refusal ? refusal : rapidjson::GetParseError_En(result.Code()), result.Offset()};
    }
    // To the reader a zero byte is the end.
    if (stream.Tell() != text.size()) {
        return ParseError{rapidjson::GetParseError_En(rapidjson::kParseErrorDocumentRootNotSingular), stream.Tell()};
    }
    return std::nullopt;
}

}  // namespace glintar::json
