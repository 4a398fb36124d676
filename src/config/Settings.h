#pragma once

#include "platform/Preferences.h"

#include <string>
#include <string_view>

namespace glintar::config {

// The user's choices by their preference keys, and what an absent one means.

inline constexpr std::string_view kSelectedSource = "selectedSourceID";
inline constexpr std::string_view kDisplayMode = "displayMode";
inline constexpr std::string_view kGasSource = "gasSource";
inline constexpr std::string_view kShowGasFee = "showGasFee";
inline constexpr std::string_view kShowChange = "showChange24h";
inline constexpr std::string_view kShowHighLow = "showHighLow24h";
inline constexpr std::string_view kShowSparkline = "showSparkline";
inline constexpr std::string_view kFloatTransparent = "floatTransparent";
inline constexpr std::string_view kFloatOffset = "floatOffset";

/// Posted after the display settings have been saved.
inline constexpr std::string_view kDisplaySettingsChanged = "DisplaySettingsChanged";

/// Posted after that when the display mode may be another one.
inline constexpr std::string_view kDisplayModeChanged = "DisplayModeChanged";

/// The market-data source in use.
[[nodiscard]] inline std::string selectedSourceID(const platform::Preferences& preferences) {
    return preferences.string(kSelectedSource).value_or("coingecko");
}

}  // namespace glintar::config
