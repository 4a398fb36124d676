#pragma once

#include "demo/DemoSession.h"
#include "demo/MarketServer.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::demo {

/// How `glintar-demo-market` was called.
struct MarketOptions {
    MarketServer::Options server;
    std::filesystem::path configFile;  ///< where the source configuration is written; empty for nowhere
    std::vector<std::string> faults;   ///< each KIND[:SERVICE[:COUNT]]
    bool isWithParent = false;
    std::filesystem::path removeAtEnd;  ///< empty for none
    bool isHelp = false;
};

extern const std::string_view kMarketUsage;

/// The error says which option is wrong.
[[nodiscard]] std::expected<MarketOptions, std::string> parseMarketOptions(std::span<char* const> arguments);

/// Only a directory that was made for a demonstration may be removed whole.
[[nodiscard]] bool isDemoDirectory(const std::filesystem::path& path);

}  // namespace glintar::demo
