#pragma once

#include "demo/Market.h"

#include <chrono>
#include <map>
#include <string>
#include <string_view>

namespace glintar::demo {

/// A request, without the machine it was sent to.
struct Question {
    std::string service;  ///< first part of the path: "coingecko", "binance", "mempool" and so on
    std::string path;     ///< the rest, as the real service knows it: "/api/v3/ticker/24hr"
    std::map<std::string, std::string> parameters;
};

struct Answer {
    int status = 200;
    std::string body;  ///< JSON
};

/// Speaks for the services, in the shape in which each of them answers, refusals too.
class MarketAnswers {
public:
    /// `address` is our own, without a slash at its end; the pictures of coins lie there, at kImagePath.
    MarketAnswers(const Market& market, std::string address) : market_(market), address_(std::move(address)) {}

    /// Status 404 for what no service knows. `time` is only told, it moves no price.
    [[nodiscard]] Answer answer(const Question& question, Step step, std::chrono::system_clock::time_point time) const;

    static constexpr std::string_view kImagePath = "/images/";

private:
    const Market& market_;
    std::string address_;
};

}  // namespace glintar::demo
