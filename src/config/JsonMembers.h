#pragma once

#include "json/Json.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace glintar::config {

/// Takes the members of a JSON object one by one, and remembers what was wrong first.
class JsonMembers {
public:
    /// `place` names the value in the error, such as "sources[2]".
    JsonMembers(json::View value, std::string place) : value_(value), place_(std::move(place)) {
        if (!value.isObject()) {
            error_ = fmt::format("{}: not an object", place_);
        }
    }

    /// T is std::string, double or bool.
    template <class T>
    JsonMembers& required(std::string_view key, T& into) {
        const auto member = value_.member(key);
        if (!member) {
            return refuse(key, "missing");
        }
        const auto found = as<T>(*member);
        if (!found) {
            return refuse(key, "of the wrong type");
        }
        into = T(*found);
        return *this;
    }

    /// Absent and null leave `into` empty.
    template <class T>
    JsonMembers& optional(std::string_view key, std::optional<T>& into) {
        const auto member = value_.member(key);
        return member && !member->isNull() ? required(key, into.emplace()) : *this;
    }

    [[nodiscard]] const std::optional<std::string>& error() const { return error_; }

private:
    template <class T>
    static auto as(json::View value) {
        if constexpr (std::is_same_v<T, std::string>) {
            return value.string();
        } else if constexpr (std::is_same_v<T, bool>) {
            return value.boolean();
        } else {
            static_assert(std::is_same_v<T, double>);
            return value.number();
        }
    }

    JsonMembers& refuse(std::string_view key, std::string_view why) {
        if (!error_) {
            error_ = fmt::format("{}.{}: {}", place_, key, why);
        }
        return *this;
    }

    json::View value_;
    std::string place_;
    std::optional<std::string> error_;
};

}  // namespace glintar::config
