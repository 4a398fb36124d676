#pragma once

#include <chrono>
#include <expected>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::demo {

/// What a service does instead of answering well.
struct Fault {
    enum class Kind {
        Off,        ///< it answers well
        Status,     ///< it refuses, with `status`
        Slow,       ///< it answers well, but `delay` later
        Hang,       ///< it takes the request and never answers
        Truncated,  ///< the connection ends in the middle of the body
        Html,       ///< an HTML page with status 200
        Wrong,      ///< JSON of another shape
        Huge,       ///< 100 MB of JSON, without an announced length
        Deep,       ///< 100,000 nested arrays
        BadUtf8,    ///< the good answer with a string in it that is no UTF-8
    };
    Kind kind = Kind::Off;
    int status = 200;
    std::chrono::milliseconds delay = std::chrono::seconds{2};

    /// A status ("401", "403", "429", "500", "503"), "slow", "hang", "truncated", "html", "wrong", "huge", "deep",
    /// "badutf8" or "off".
    [[nodiscard]] static std::optional<Fault> named(std::string_view name);
};

/// Which service fails how, and how often still. Any thread.
class MarketFaults {
public:
    /// For `count` requests, or until it is set anew. An empty service means all of them, and forgets what was set for
    /// single ones.
    void set(const std::string& service, Fault fault, std::optional<unsigned> count = std::nullopt);

    /// Reads KIND[:SERVICE[:COUNT]]; the error says what is wrong.
    [[nodiscard]] std::expected<void, std::string> setFrom(std::string_view text);

    /// The fault of the service's next request, which is counted.
    [[nodiscard]] Fault take(const std::string& service);

private:
    struct Planned {
        Fault fault;
        std::optional<unsigned> left;
    };
    std::mutex mutex_;
    std::map<std::string, Planned> planned_;  // by service; "" for all others
};

/// Reads a whole number of at most so much; none for anything else.
[[nodiscard]] std::optional<unsigned> wholeNumber(std::string_view text, unsigned atMost = 1'000'000'000);

}  // namespace glintar::demo
