// SettingsCommand: how prices are shown.

#include "line/SettingsCommand.h"
#include "platform/TextOutput.h"
#include "settings/displaymodeSettingsViewModel.h"
#include "text/Number.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <variant>

namespace glintar::line {

namespace {

using settings::displaymodeSettingsViewModel;

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

/// What can be set of the display, by the name of its field.
struct Field {
    std::string_view name;
    std::variant<bool displaymodeSettingsViewModel::*, std::int64_t displaymodeSettingsViewModel::*,
                 double displaymodeSettingsViewModel::*>
        member;
    double lowest = 0;
    double highest = 1;
};
const std::array<Field, 9> kFields{{{"displayMode", &displaymodeSettingsViewModel::displayMode},
                                    {"floatTransparent", &displaymodeSettingsViewModel::floatTransparent},
                                    {"floatOffset", &displaymodeSettingsViewModel::floatOffset, 10, 100},
                                    {"showChange24h", &displaymodeSettingsViewModel::showChange24h},
                                    {"showHighLow24h", &displaymodeSettingsViewModel::showHighLow24h},
                                    {"showSparkline", &displaymodeSettingsViewModel::showSparkline},
                                    {"showGasFee", &displaymodeSettingsViewModel::showGasFee},
                                    {"gasSource", &displaymodeSettingsViewModel::gasSource},
                                    {"launchAtLogin", &displaymodeSettingsViewModel::launchAtLogin}}};

/// One value as text; JSON writes the same.
std::string valueText(const displaymodeSettingsViewModel& model, const Field& field) {
    return std::visit([&](auto member) { return fmt::format("{}", model.*member); }, field.member);
}

}  // namespace

std::optional<int> SettingsCommand::listDisplay(const Request& request) {
    const displaymodeSettingsViewModel model(machine_.platform, machine_.loginItem);
    std::string object;
    for (const auto& field : kFields) {
        const auto value = valueText(model, field);
        if (request.isJson) {
            object += fmt::format("{}\"{}\":{}", object.empty() ? '{' : ',', field.name, value);
        } else {
            machine_.output.printLine(fmt::format("{} {}", field.name, value));
        }
    }
    if (request.isJson) {
        machine_.output.printLine(object + '}');
    }
    return kDone;
}

std::optional<int> SettingsCommand::setDisplay(const Request& request) {
    const auto &name = request.words[0], &value = request.words[1];
    const auto* const field = std::ranges::find(kFields, name, &Field::name);
    if (field == kFields.end()) {
        return complain(
            fmt::format("there is no setting \"{}\"; \"glintar display list\" shows them", text::oneLine(name)),
            kWrongUsage);
    }
    const bool isSwitch = std::holds_alternative<bool displaymodeSettingsViewModel::*>(field->member);
    const auto number = isSwitch && (value == "true" || value == "on")     ? 1.0
                        : isSwitch && (value == "false" || value == "off") ? 0.0
                                                                           : text::parseDecimal(value);
    const bool isWhole = number && *number == static_cast<double>(static_cast<int>(std::clamp(*number, -1e6, 1e6)));
    if (!isWhole || *number < field->lowest || *number > field->highest) {
        return complain(isSwitch
                            ? fmt::format("{} is true or false", name)
                            : fmt::format("{} is a whole number from {} to {}", name, field->lowest, field->highest),
                        kWrongUsage);
    }
    displaymodeSettingsViewModel model(machine_.platform, machine_.loginItem);
    if (name == "launchAtLogin") {
        if (model.launchAtLogin != (*number != 0)) {
            model.setLaunchAtLogin(*number != 0);
        }
        return model.loginError.empty() ? kDone : complain(model.loginError, kFailed);
    }
    std::visit(
        [&](auto member) { model.*member = static_cast<std::remove_reference_t<decltype(model.*member)>>(*number); },
        field->member);
    model.saveDisplaySettings();
    return model.saveError.empty() ? kDone : complain(model.saveError, kFailed);
}

}  // namespace glintar::line
