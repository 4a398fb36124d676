#include "demo/MarketOptions.h"

#include "text/Number.h"

#include <fmt/format.h>

#include <system_error>

namespace glintar::demo {

constexpr std::string_view kMarketUsage =
    R"(Usage: glintar-demo-market [OPTION]...

Plays price and fee services on this machine, without any network.

  --port N              port of 127.0.0.1, 0 for any that is free (0)
  --seed N              of the prices: the same seed gives the same ones (1)
  --step SECONDS        how often prices move, or "per-request" (1)
  --write-config FILE   write a source configuration that names these services
  --fault KIND[:SERVICE[:COUNT]]
                        let a service, or all, fail: 401, 403, 429, 500, 503,
                        slow, hang, truncated, html, wrong, huge, deep, badutf8
  --with-parent         end with the program that started this one
  --remove-at-end DIR   remove DIR, named glintar-demo-..., when ending
  --help                show this text
)";

namespace {

using Outcome = std::expected<void, std::string>;

Outcome take(MarketOptions& options, std::string_view name, std::string_view value) {
    MarketServer::Options& server = options.server;
    const auto refuse = [&] { return std::unexpected(fmt::format("{} does not take \"{}\"", name, value)); };
    if (name == "--port" || name == "--seed") {
        const auto number = wholeNumber(value, name == "--port" ? 65535 : 1'000'000'000);
        if (!number) {
            return refuse();
        }
        if (name == "--port") {
            server.port = static_cast<int>(*number);
        } else {
            server.seed = *number;
        }
    } else if (name == "--step") {
        server.step.reset();
        if (value != "per-request") {
            const auto seconds = text::parseDecimal(value);
            if (!seconds || *seconds < 0.001 || *seconds > 86400) {
                return refuse();
            }
            server.step = std::chrono::milliseconds{static_cast<int>(*seconds * 1000)};
        }
    } else if (name == "--write-config") {
        options.configFile = value;
    } else if (name == "--fault") {
        if (const auto outcome = MarketFaults().setFrom(value); !outcome) {
            return outcome;
        }
        options.faults.emplace_back(value);
    } else if (name == "--remove-at-end") {
        if (!isDemoDirectory(value)) {
            return refuse();
        }
        options.removeAtEnd = value;
    } else {
        return std::unexpected(fmt::format("unknown option {}", name));
    }
    return {};
}

}  // namespace

bool isDemoDirectory(const std::filesystem::path& path) {
    std::error_code error;
    return path.is_absolute() && path.filename().string().starts_with(kDemoDirectoryPrefix) &&
           std::filesystem::symlink_status(path, error).type() == std::filesystem::file_type::directory;
}

std::expected<MarketOptions, std::string> parseMarketOptions(std::span<char* const> arguments) {
    MarketOptions options;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view name = arguments[i];
        if (name == "--with-parent") {
            options.isWithParent = true;
        } else if (name == "--help") {
            options.isHelp = true;
        } else if (i + 1 == arguments.size()) {
            return std::unexpected(fmt::format("{} is unknown or lacks its value", name));
        } else if (const auto outcome = take(options, name, arguments[++i]); !outcome) {
            return std::unexpected(outcome.error());
        }
    }
    return options;
}

}  // namespace glintar::demo
