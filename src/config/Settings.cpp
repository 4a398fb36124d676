#include "config/Settings.h"

#include "platform/Preferences.h"

#include <algorithm>
#include <cmath>

namespace glintar::config {

namespace {

constexpr double kLargestOffset = 100'000;  // beyond all screens

double offsetOf(double stored) {
    return stored != 0 && std::isfinite(stored) ? std::clamp(stored, -kLargestOffset, kLargestOffset)
                                                : Settings{}.floatOffset;
}

}  // namespace

Settings Settings::load(const platform::Preferences& preferences) {
    return {.selectedSourceID = preferences.string(kSelectedSource).value_or(Settings{}.selectedSourceID),
            .displayMode = preferences.integer(kDisplayMode),
            .floatTransparent = preferences.boolean(kFloatTransparent),
            .floatOffset = offsetOf(preferences.real(kFloatOffset)),
            .showChange24h = preferences.boolean(kShowChange),
            .showHighLow24h = preferences.boolean(kShowHighLow),
            .showSparkline = preferences.boolean(kShowSparkline),
            .showGasFee = preferences.boolean(kShowGasFee),
            .gasSource = preferences.integer(kGasSource),
            .enableArbitrage = preferences.boolean(kEnableArbitrage)};
}

bool Settings::saveDisplay(platform::Preferences& preferences) const {
    return preferences.setInteger(kDisplayMode, displayMode) &&
           preferences.setBoolean(kFloatTransparent, floatTransparent) &&
           preferences.setReal(kFloatOffset, floatOffset) && preferences.setBoolean(kShowChange, showChange24h) &&
           preferences.setBoolean(kShowHighLow, showHighLow24h) &&
           preferences.setBoolean(kShowSparkline, showSparkline) && preferences.setBoolean(kShowGasFee, showGasFee) &&
           preferences.setInteger(kGasSource, gasSource) && preferences.setBoolean(kEnableArbitrage, enableArbitrage);
}

}  // namespace glintar::config
