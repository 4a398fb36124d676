#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace glintar::text {

/// Full Unicode case mapping, in no language ("ß" becomes "SS"). Invalid UTF-8 is replaced by U+FFFD on the way.
[[nodiscard]] std::string upper(std::string_view text);
[[nodiscard]] std::string lower(std::string_view text);

/// Without Unicode white space and line breaks at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// User-perceived characters (grapheme clusters, UAX #29).
[[nodiscard]] std::size_t characterCount(std::string_view text);
[[nodiscard]] std::string_view firstCharacters(std::string_view text, std::size_t count);

/// Columns of a terminal that the text takes, counted as for `fitColumns`.
[[nodiscard]] std::size_t columnCount(std::string_view text);

/// The text in at most so many columns of a terminal: what does not fit gives way to "…". Wide characters (UAX #11)
/// take two columns and marks none; sequences of emoji may be counted too wide.
[[nodiscard]] std::string fitColumns(std::string_view text, std::size_t columns);

[[nodiscard]] bool isValidUtf8(std::string_view text);

/// The text with every invalid piece of UTF-8 replaced by one U+FFFD.
[[nodiscard]] std::string validUtf8(std::string_view text);

/// The text fit for one line of a terminal or log: control characters, those that turn the direction of writing, line
/// breaks of any kind and invalid UTF-8 become U+FFFD.
[[nodiscard]] std::string oneLine(std::string_view text);

/// The same for text of several lines: line feeds and tabs stay.
[[nodiscard]] std::string printable(std::string_view text);

}  // namespace glintar::text
