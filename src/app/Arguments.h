#pragma once

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::app {

/// Stands before simulated prices, in both doors.
inline constexpr const char* kSimulatedMark = "[simulated] ";

enum class Format { Text, Json, Waybar, I3bar, Genmon, Tmux, Polybar };

/// What of the line is shown, in place of what the preferences say.
struct Fields {
    bool price = false;
    bool reference = false;
    bool change = false;
    bool range = false;
    bool sparkline = false;
    bool fee = false;

    [[nodiscard]] bool hasCoins() const { return price || reference || change || range || sparkline; }
};

/// What of the desktop program is opened, of one that runs already too. The dashboard only of such a one.
enum class Opens { Menu, Settings, Dashboard };

/// What the user asked the program to do.
struct Arguments {
    enum class Command { Desktop, Line, Compare, Diagnose, Settings, Help, Version };
    Command command = Command::Desktop;
    Format format = Format::Text;
    bool once = false;
    bool demo = false;
    Opens opens = Opens::Menu;
    std::vector<std::string_view> words;  ///< of `Settings`: the command with all that follows; as long as main's
    std::optional<Fields> fields;
    std::optional<std::string> coin;  ///< identifier of the only one that is shown
};

/// The error is a sentence for the user.
[[nodiscard]] std::expected<Arguments, std::string> parseArguments(std::span<const char* const> arguments);

[[nodiscard]] std::string_view usage();

}  // namespace glintar::app
