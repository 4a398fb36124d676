#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace glintar::platform {
class Preferences;
}

namespace glintar::config {

// The preference keys of the settings.

inline constexpr std::string_view kSelectedSource = "selectedSourceID";
inline constexpr std::string_view kDisplayMode = "displayMode";
inline constexpr std::string_view kGasSource = "gasSource";
inline constexpr std::string_view kShowGasFee = "showGasFee";
inline constexpr std::string_view kShowChange = "showChange24h";
inline constexpr std::string_view kShowHighLow = "showHighLow24h";
inline constexpr std::string_view kShowSparkline = "showSparkline";
inline constexpr std::string_view kFloatTransparent = "floatTransparent";
inline constexpr std::string_view kFloatOffset = "floatOffset";
inline constexpr std::string_view kEnableArbitrage = "enableArbitrage";

/// What the user reads when a choice could not be stored.
inline constexpr const char* kNotSaved = "The preferences could not be written, so the change is not kept.";

/// Posted after the display settings have been saved.
inline constexpr std::string_view kDisplaySettingsChanged = "DisplaySettingsChanged";

/// Posted after that when the display mode may be another one.
inline constexpr std::string_view kDisplayModeChanged = "DisplayModeChanged";

/// The user's choices, but for the coins and the API keys. What is absent from the preferences has the value it has
/// here.
struct Settings {
    std::string selectedSourceID = "coingecko";  ///< the market-data source in use
    std::int64_t displayMode = 0;                ///< 1: the panel that follows the pointer; any other: the line
    bool floatTransparent = false;               ///< the panel without its plate
    double floatOffset = 16;                     ///< points from the pointer to the panel; a stored 0 reads as 16
    bool showChange24h = false;
    bool showHighLow24h = false;
    bool showSparkline = false;
    bool showGasFee = false;
    std::int64_t gasSource = 0;    ///< 1: Bitcoin; any other: Ethereum
    bool enableArbitrage = false;  ///< kept, and read by nobody

    bool operator==(const Settings&) const = default;

    /// What is stored now. Main thread.
    [[nodiscard]] static Settings load(const platform::Preferences& preferences);

    /// Stores all but the source; false when that failed.
    bool saveDisplay(platform::Preferences& preferences) const;
};

}  // namespace glintar::config
