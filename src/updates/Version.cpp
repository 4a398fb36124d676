#include "updates/Version.h"

#include <algorithm>

namespace glintar::updates {

namespace {

bool isNumber(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

bool isIdentifier(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
    });
}

bool hasLeadingZero(std::string_view number) {
    return number.size() > 1 && number.front() == '0';
}

std::vector<std::string> parts(std::string_view text) {
    std::vector<std::string> found;
    for (std::size_t end = 0; end != std::string_view::npos; text.remove_prefix(std::min(end + 1, text.size()))) {
        end = text.find('.');
        found.emplace_back(text.substr(0, end));
    }
    return found;
}

/// Numbers of any length by their value and below words, words by their bytes.
std::weak_ordering compare(const std::string& one, const std::string& other) {
    const bool isOneNumber = isNumber(one);
    if (isOneNumber != isNumber(other)) {
        return isOneNumber ? std::weak_ordering::less : std::weak_ordering::greater;
    }
    if (isOneNumber && one.size() != other.size()) {
        return one.size() <=> other.size();
    }
    return one <=> other;
}

std::weak_ordering compare(const std::vector<std::string>& one, const std::vector<std::string>& other) {
    for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
        if (const auto order = compare(one[i], other[i]); order != 0) {
            return order;
        }
    }
    return one.size() <=> other.size();
}

}  // namespace

std::optional<Version> Version::parse(std::string_view text) {
    const auto isPart = [](const std::string& part) { return isIdentifier(part); };
    if (const auto plus = text.find('+'); plus != std::string_view::npos) {
        if (!std::ranges::all_of(parts(text.substr(plus + 1)), isPart)) {
            return std::nullopt;
        }
        text = text.substr(0, plus);
    }
    Version version;
    const auto hyphen = text.find('-');
    if (hyphen != std::string_view::npos) {
        version.preRelease_ = parts(text.substr(hyphen + 1));
    }
    version.numbers_ = parts(text.substr(0, hyphen));
    const auto isGood = [](const std::string& part) { return !isNumber(part) || !hasLeadingZero(part); };
    const bool isValid = version.numbers_.size() == 3 && std::ranges::all_of(version.numbers_, isNumber) &&
                         std::ranges::all_of(version.numbers_, isGood) &&
                         std::ranges::all_of(version.preRelease_, isPart) &&
                         std::ranges::all_of(version.preRelease_, isGood);
    return isValid ? std::optional(std::move(version)) : std::nullopt;
}

std::weak_ordering Version::operator<=>(const Version& other) const {
    if (const auto order = compare(numbers_, other.numbers_); order != 0) {
        return order;
    }
    if (isPreRelease() != other.isPreRelease()) {
        return isPreRelease() ? std::weak_ordering::less : std::weak_ordering::greater;
    }
    return compare(preRelease_, other.preRelease_);
}

}  // namespace glintar::updates
