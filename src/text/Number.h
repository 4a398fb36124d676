#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace glintar::text {

/// Reads a finite decimal: sign, digits, point, exponent, the whole text, as `strtod` would in the C locale but without
/// leading blanks, "inf", "nan" and hexadecimal. Exact to the last bit; too small a number reads as zero, one beyond
/// double is none.
[[nodiscard]] std::optional<double> parseDecimal(std::string_view text);

/// The number with so many decimals, as `%.*f` writes it in the C locale.
[[nodiscard]] std::string fixed(double value, int decimals);

/// The number in the fewest digits that read back to it, and always seen to be a decimal: "12.0", "0.25", "1e+18".
[[nodiscard]] std::string decimal(double value);

}  // namespace glintar::text
