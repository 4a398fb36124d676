#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::updates {

/// A version number by the rules of semver.org 2.0.0. Its order is the precedence of item 11: what stands behind a plus
/// sign does not count.
class Version {
public:
    /// None for a text that is no version: three numbers and, at will, identifiers behind "-" and "+".
    [[nodiscard]] static std::optional<Version> parse(std::string_view text);

    [[nodiscard]] bool isPreRelease() const { return !preRelease_.empty(); }

    [[nodiscard]] std::weak_ordering operator<=>(const Version& other) const;
    [[nodiscard]] bool operator==(const Version& other) const { return (*this <=> other) == 0; }

private:
    std::vector<std::string> numbers_, preRelease_;
};

}  // namespace glintar::updates
