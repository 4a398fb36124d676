#include "text/Unicode.h"

#include <unicode/ubrk.h>
#include <unicode/ucasemap.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace glintar::text {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr const char* kRootLocale = "";  // nullptr would be the user's

struct Close {
    void operator()(UCaseMap* map) const { ucasemap_close(map); }
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
    void operator()(UText* text) const { utext_close(text); }
};

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// ICU's macros narrow an int on the way.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"

/// Takes the first code point off the text; negative when invalid (as much of it as belongs together).
UChar32 takeFirst(std::string_view& text) {
    std::size_t next = 0;
    UChar32 codePoint = 0;
    U8_NEXT(text.data(), next, text.size(), codePoint);  // NOLINT(bugprone-inc-dec-in-conditions): ICU's macro
    text.remove_prefix(next);
    return codePoint;
}

UChar32 takeLast(std::string_view& text) {
    auto previous = static_cast<int32_t>(text.size());
    UChar32 codePoint = 0;
    U8_PREV(text.data(), 0, previous, codePoint);
    text = text.substr(0, static_cast<std::size_t>(previous));
    return codePoint;
}

#pragma GCC diagnostic pop

using CaseMapping = decltype(&ucasemap_utf8ToUpper);

std::string mapCase(std::string_view anyText, CaseMapping mapping) {
    // Shared by all threads: mapping does not change it.
    static const std::unique_ptr<UCaseMap, Close> map = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<UCaseMap, Close>(ucasemap_open(kRootLocale, 0, &status));
    }();
    // ICU would pass invalid bytes on.
    std::string text = validUtf8(anyText);
    std::string result(text.size() + 8, '\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = mapping(map.get(), result.data(), static_cast<int32_t>(result.size()), text.data(),
                                       static_cast<int32_t>(text.size()), &status);
        if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR) {
            return text;
        }
        result.resize(static_cast<std::size_t>(length));
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            return result;
        }
    }
}

struct Walk {
    std::size_t characters = 0;
    std::size_t bytes = 0;
};

/// Goes over at most so many characters from the start.
Walk walk(std::string_view text, std::size_t limit) {
    // A line break of two bytes is one character.
    if (isAscii(text) && !text.contains('\r')) {
        const std::size_t length = std::min(text.size(), limit);
        return {length, length};
    }
    UErrorCode status = U_ZERO_ERROR;
    // An iterator is no thing to share, and opening one is slow.
    thread_local const std::unique_ptr<UBreakIterator, Close> iterator(
        ubrk_open(UBRK_CHARACTER, kRootLocale, nullptr, 0, &status));
    const std::unique_ptr<UText, Close> source(
        utext_openUTF8(nullptr, text.data(), static_cast<int64_t>(text.size()), &status));
    Walk result;
    if (iterator) {
        ubrk_setUText(iterator.get(), source.get(), &status);
    }
    if (!iterator || U_FAILURE(status)) {
        return {std::min(text.size(), limit), std::min(text.size(), limit)};
    }
    while (result.characters < limit) {
        const int32_t boundary = ubrk_next(iterator.get());
        if (boundary == UBRK_DONE) {
            break;
        }
        ++result.characters;
        result.bytes = static_cast<std::size_t>(boundary);
    }
    return result;
}

/// Copies the text; what `isBad` says of a code point, and invalid UTF-8, becomes U+FFFD.
template <class IsBad>
std::string replacing(std::string_view text, IsBad isBad) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::string_view before = text;
        const UChar32 codePoint = takeFirst(text);
        const bool isGood = codePoint >= 0 && !isBad(codePoint);
        result.append(isGood ? before.substr(0, before.size() - text.size()) : kReplacement);
    }
    return result;
}

/// Columns that a code point adds behind what was shown before it.
std::size_t columnsOf(UChar32 codePoint, std::size_t before) {
    constexpr UChar32 kEmojiPresentation = 0xFE0F;
    if (codePoint == kEmojiPresentation) {
        return before == 1 ? 1 : 0;
    }
    const auto category = u_charType(codePoint);
    if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR) {
        return 0;
    }
    const auto width = u_getIntPropertyValue(codePoint, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

/// Control characters, the two separators, of which there will never be others (Unicode's stability policies), and what
/// turns the direction of the text that follows. Every line of the console is looked at, so ICU's tables need not come
/// into memory for it.
bool breaksLineOrTerminal(UChar32 codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7f && codePoint <= 0x9f) ||
           (codePoint >= 0x2028 && codePoint <= 0x202e) || (codePoint >= 0x2066 && codePoint <= 0x2069);
}

bool isWhiteSpace(UChar32 codePoint) {
    return codePoint < 0x80 ? codePoint == ' ' || (codePoint >= '\t' && codePoint <= '\r') : u_isUWhiteSpace(codePoint);
}

}  // namespace

std::string upper(std::string_view text) {
    if (!isAscii(text)) {
        return mapCase(text, ucasemap_utf8ToUpper);
    }
    std::string result(text);
    std::ranges::transform(result, result.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return result;
}

std::string lower(std::string_view text) {
    if (!isAscii(text)) {
        return mapCase(text, ucasemap_utf8ToLower);
    }
    std::string result(text);
    std::ranges::transform(result, result.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

std::string_view trimmed(std::string_view text) {
    for (auto rest = text; !rest.empty() && isWhiteSpace(takeFirst(rest));) {
        text = rest;
    }
    for (auto rest = text; !rest.empty() && isWhiteSpace(takeLast(rest));) {
        text = rest;
    }
    return text;
}

std::size_t characterCount(std::string_view text) {
    return walk(text, std::numeric_limits<std::size_t>::max()).characters;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    return text.substr(0, walk(text, count).bytes);
}

std::size_t columnCount(std::string_view text) {
    std::size_t used = 0;
    std::size_t last = 0;
    while (!text.empty()) {
        const auto width = columnsOf(takeFirst(text), last);
        last = width > 0 ? width : last;
        used += width;
    }
    return used;
}

std::string fitColumns(std::string_view text, std::size_t columns) {
    std::string_view rest = text;
    std::size_t used = 0;
    std::size_t last = 0;
    std::size_t kept = 0;  // bytes that leave a column for the dots
    while (!rest.empty()) {
        const auto codePoint = takeFirst(rest);
        const auto width = columnsOf(codePoint, last);
        last = width > 0 ? width : last;
        used += width;
        if (used > columns) {
            return columns == 0 ? std::string() : std::string(text.substr(0, kept)) + "…";
        }
        if (used < columns) {
            kept = text.size() - rest.size();
        }
    }
    return std::string(text);
}

bool isValidUtf8(std::string_view text) {
    while (!text.empty()) {
        if (takeFirst(text) < 0) {
            return false;
        }
    }
    return true;
}

std::string validUtf8(std::string_view text) {
    return replacing(text, [](UChar32) { return false; });
}

std::string printable(std::string_view text) {
    return replacing(text, [](UChar32 codePoint) {
        return codePoint != '\n' && codePoint != '\t' && breaksLineOrTerminal(codePoint);
    });
}

std::string oneLine(std::string_view text) {
    return replacing(text, breaksLineOrTerminal);
}

}  // namespace glintar::text
