#include "market/ValuePath.h"

#include "text/Number.h"

namespace glintar::market {

PathValue::PathValue(json::View value) : value_(value) {
    if (const auto number = value.number()) {
        value_ = *number;
    } else if (const auto string = value.string()) {
        // An address is no decimal, so it stays a text.
        if (const auto decimal = text::parseDecimal(*string)) {
            value_ = *decimal;
        } else {
            value_ = *string;
        }
    }
}

std::optional<double> PathValue::number() const {
    const auto* number = std::get_if<double>(&value_);
    return number ? std::optional(*number) : std::nullopt;
}

std::optional<std::string_view> PathValue::string() const {
    const auto* string = std::get_if<std::string_view>(&value_);
    return string ? std::optional(*string) : std::nullopt;
}

std::optional<json::View> PathValue::other() const {
    const auto* other = std::get_if<json::View>(&value_);
    return other ? std::optional(*other) : std::nullopt;
}

std::optional<PathValue> valueAtPath(std::string_view path, json::View root) {
    if (path.empty()) {
        return std::nullopt;
    }
    auto current = root;
    while (!path.empty()) {
        const auto end = path.find('.');
        const auto piece = path.substr(0, end);
        path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
        if (piece.empty()) {
            continue;
        }
        const auto member = current.member(piece);
        if (!member) {
            return std::nullopt;
        }
        current = *member;
    }
    return PathValue(current);
}

}  // namespace glintar::market
