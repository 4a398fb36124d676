#pragma once

#include "demo/MarketAnswers.h"
#include "json/JsonWriter.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::demo {

// What the services share.

/// One request, and the market at its moment.
struct Scene {
    const Market& market;
    const Question& question;
    Step step;
    std::chrono::milliseconds time;  // since 1970 UTC
    const std::string& address;

    [[nodiscard]] std::string_view parameter(std::string_view name) const {
        const auto found = question.parameters.find(std::string(name));
        return found == question.parameters.end() ? std::string_view() : found->second;
    }
    /// The coin as the asked service trades it.
    [[nodiscard]] CoinState traded(std::string_view symbol) const {
        return market.at(question.service, market.bySymbol(symbol, step), step);
    }
    [[nodiscard]] std::chrono::seconds seconds() const { return std::chrono::floor<std::chrono::seconds>(time); }
    [[nodiscard]] std::string timestamp() const {
        return fmt::format("{:%FT%T}.{:03}Z", fmt::gmtime(seconds().count()), (time - seconds()).count());
    }
};

/// What stands between prefix and suffix; none when they are not there, or nothing is between them.
inline std::optional<std::string_view> between(std::string_view text, std::string_view prefix,
                                               std::string_view suffix) {
    if (text.size() <= prefix.size() + suffix.size() || !text.starts_with(prefix) || !text.ends_with(suffix)) {
        return std::nullopt;
    }
    return text.substr(prefix.size(), text.size() - prefix.size() - suffix.size());
}

/// All decimals that a price can have, without zeros at the end and never with an exponent.
inline std::string plain(double price) {
    std::string text = fmt::format("{:.8f}", price);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

inline Answer refusal(int status, std::string_view key, std::string_view text) {
    json::Writer writer;
    writer.beginObject().key(key).string(text).endObject();
    return {status, std::string(writer.text())};
}

/// So many coins were traded in a day, or exist: figures that nobody compares.
inline constexpr double kTraded = 4726;
inline constexpr double kSupply = 19'700'000;

/// The answers of exchanges, and of those who watch a network's fees; none for a service that is neither.
[[nodiscard]] std::optional<Answer> exchangeAnswer(const Scene& scene);
[[nodiscard]] std::optional<Answer> feeAnswer(const Scene& scene);

}  // namespace glintar::demo
