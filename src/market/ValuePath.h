#pragma once

#include "json/Json.h"

#include <optional>
#include <string_view>
#include <variant>

namespace glintar::market {

/// What lies at a path: a number (numeric strings count as numbers), a text, or any other value as it is.
/// Texts and values belong to the document.
class PathValue {
public:
    explicit PathValue(json::View value);

    [[nodiscard]] std::optional<double> number() const;
    [[nodiscard]] std::optional<std::string_view> string() const;
    [[nodiscard]] std::optional<json::View> other() const;

private:
    std::variant<double, std::string_view, json::View> value_;
};

/// Follows the keys of a dotted path ("data.last") from the root. Empty pieces are skipped; only objects are entered,
/// so there is no way into a list. A text is read as a number when it is a complete finite decimal, which an
/// address never is. None for an empty path or a missing member.
[[nodiscard]] std::optional<PathValue> valueAtPath(std::string_view path, json::View root);

}  // namespace glintar::market
