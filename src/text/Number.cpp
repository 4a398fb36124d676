#include "text/Number.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace glintar::text {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether a well-formed decimal without sign, known to lie outside the range of double, is too large (else too small).
bool isBeyondDouble(std::string_view digits) {
    const std::size_t exponentMark = std::min(digits.find_first_of("eE"), digits.size());
    const std::string_view mantissa = digits.substr(0, exponentMark);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const auto first = static_cast<std::int64_t>(mantissa.find_first_not_of("0."));
    const std::int64_t magnitude = static_cast<std::int64_t>(point) - first;

    std::string_view exponentText = digits.substr(std::min(exponentMark + 1, digits.size()));
    if (exponentText.starts_with('+')) {
        exponentText.remove_prefix(1);
    }
    std::int64_t exponent = 0;
    const auto read = std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
    if (read.ec == std::errc::result_out_of_range) {
        return !exponentText.starts_with('-');
    }
    // Not the sum of both, which could overflow.
    return magnitude > -exponent;
}

}  // namespace

std::optional<double> parseDecimal(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    // from_chars alone would take a second sign, "inf" and "nan".
    if (text.empty() || (!isDigit(text.front()) && text.front() != '.')) {
        return std::nullopt;
    }
    double value = 0;
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const auto read = std::from_chars(begin, end, value);
    if (read.ec == std::errc::invalid_argument || read.ptr != end) {
        return std::nullopt;
    }
    if (read.ec == std::errc::result_out_of_range) {
        if (isBeyondDouble(text)) {
            return std::nullopt;
        }
        value = 0;
    }
    return negative ? -value : value;
}

std::string fixed(double value, int decimals) {
    return fmt::format("{:.{}f}", value, decimals);
}

std::string decimal(double value) {
    auto digits = fmt::format("{}", value);
    const bool isBareInteger = digits.find_first_not_of("-0123456789") == std::string::npos;
    return isBareInteger ? digits + ".0" : digits;
}

}  // namespace glintar::text
