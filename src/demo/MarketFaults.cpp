#include "demo/MarketFaults.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace glintar::demo {

std::optional<Fault> Fault::named(std::string_view name) {
    constexpr std::array<std::pair<std::string_view, Fault>, 14> kFaults = {{
        {"off", {}},
        {"401", {.kind = Kind::Status, .status = 401}},
        {"403", {.kind = Kind::Status, .status = 403}},
        {"429", {.kind = Kind::Status, .status = 429}},
        {"500", {.kind = Kind::Status, .status = 500}},
        {"503", {.kind = Kind::Status, .status = 503}},
        {"slow", {.kind = Kind::Slow}},
        {"hang", {.kind = Kind::Hang}},
        {"truncated", {.kind = Kind::Truncated}},
        {"html", {.kind = Kind::Html}},
        {"wrong", {.kind = Kind::Wrong}},
        {"huge", {.kind = Kind::Huge}},
        {"deep", {.kind = Kind::Deep}},
        {"badutf8", {.kind = Kind::BadUtf8}},
    }};
    const auto* const found = std::ranges::find(kFaults, name, &std::pair<std::string_view, Fault>::first);
    return found == kFaults.end() ? std::nullopt : std::optional(found->second);
}

std::optional<unsigned> wholeNumber(std::string_view text, unsigned atMost) {
    unsigned number = 0;
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const auto read = std::from_chars(begin, end, number);
    return read.ec == std::errc() && read.ptr == end && number <= atMost ? std::optional(number) : std::nullopt;
}

void MarketFaults::set(const std::string& service, Fault fault, std::optional<unsigned> count) {
    const std::scoped_lock lock(mutex_);
    if (service.empty()) {
        planned_.clear();
    }
    planned_[service] = {fault, count};
}

std::expected<void, std::string> MarketFaults::setFrom(std::string_view text) {
    const auto next = [&text] {
        const auto colon = std::min(text.find(':'), text.size());
        const std::string_view part = text.substr(0, colon);
        text.remove_prefix(std::min(colon + 1, text.size()));
        return part;
    };
    const std::string_view kind = next();
    const auto fault = Fault::named(kind);
    if (!fault) {
        return std::unexpected(fmt::format("no fault is called \"{}\"", kind));
    }
    const std::string service(next());
    std::optional<unsigned> count;
    if (!text.empty()) {
        count = wholeNumber(text);
        if (!count) {
            return std::unexpected(fmt::format("\"{}\" is no number of requests", text));
        }
    }
    set(service, *fault, count);
    return {};
}

Fault MarketFaults::take(const std::string& service) {
    const std::scoped_lock lock(mutex_);
    auto found = planned_.find(service);
    if (found == planned_.end()) {
        found = planned_.find("");
    }
    if (found == planned_.end() || found->second.left == 0U) {
        return {};
    }
    if (found->second.left) {
        --*found->second.left;
    }
    return found->second.fault;
}

}  // namespace glintar::demo
