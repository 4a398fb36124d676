#include "app/Arguments.h"

#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <ranges>
#include <utility>

namespace glintar::app {

namespace {

std::expected<Format, std::string> formatNamed(std::string_view name) {
    for (const auto& [known, format] : {std::pair<std::string_view, Format>{"text", Format::Text},
                                        {"json", Format::Json},
                                        {"waybar", Format::Waybar},
                                        {"i3bar", Format::I3bar},
                                        {"genmon", Format::Genmon},
                                        {"tmux", Format::Tmux},
                                        {"polybar", Format::Polybar}}) {
        if (name == known) {
            return format;
        }
    }
    return std::unexpected(
        fmt::format("there is no format \"{}\"; there are text, json, waybar, i3bar, genmon, tmux and polybar",
                    text::oneLine(name)));
}

std::expected<Fields, std::string> fieldsNamed(std::string_view names) {
    Fields fields;
    for (const auto part : std::views::split(names, ',')) {
        const std::string_view name(part.begin(), part.end());
        bool isKnown = false;
        for (const auto& [known, field] : {std::pair<std::string_view, bool Fields::*>{"price", &Fields::price},
                                           {"reference", &Fields::reference},
                                           {"change", &Fields::change},
                                           {"range", &Fields::range},
                                           {"sparkline", &Fields::sparkline},
                                           {"fee", &Fields::fee}}) {
            if (name == known) {
                fields.*field = isKnown = true;
            }
        }
        if (!isKnown) {
            return std::unexpected(
                fmt::format("there is no field \"{}\"; there are price, reference, change, range, sparkline and fee",
                            text::oneLine(name)));
        }
    }
    return fields;
}

/// Takes an option's value over into the arguments.
std::expected<void, std::string> apply(std::string_view option, std::string_view value, Arguments& parsed) {
    if (option == "--format") {
        const auto format = formatNamed(value);
        if (!format) {
            return std::unexpected(format.error());
        }
        parsed.format = *format;
    } else if (option == "--fields") {
        const auto fields = fieldsNamed(value);
        if (!fields) {
            return std::unexpected(fields.error());
        }
        parsed.fields = *fields;
    } else {
        parsed.coin = value;
    }
    return {};
}

std::optional<Arguments::Command> commandNamed(std::string_view name) {
    using Command = Arguments::Command;
    for (const auto& [known, command] : {std::pair<std::string_view, Command>{"line", Command::Line},
                                         {"compare", Command::Compare},
                                         {"diagnose", Command::Diagnose}}) {
        if (name == known) {
            return command;
        }
    }
    return std::nullopt;
}

bool isOfSettings(std::string_view command) {
    return command == "coins" || command == "source" || command == "display";
}

std::string whyNoCommand(std::string_view name, bool isDemo) {
    if (!isOfSettings(name)) {
        return fmt::format("there is no command \"{}\"", text::oneLine(name));
    }
    return isDemo ? fmt::format("\"{}\" changes your own settings, so it takes no --demo", name)
                  : fmt::format("\"{}\" comes before all else: glintar {} --help", name, name);
}

}  // namespace

std::string_view usage() {
    return "Usage: glintar [--settings | --dashboard] [--demo]\n"
           "       glintar line [--once] [--format FORMAT] [--fields LIST] [--coin ID] [--demo]\n"
           "       glintar compare [--format text|json] [--demo]\n"
           "       glintar diagnose [--format text|json] [--demo]\n"
           "       glintar coins list | search TEXT | add TEXT [--ref PRICE] | remove APIID\n"
           "       glintar source list | use ID | key ID\n"
           "       glintar display list | set NAME VALUE\n"
           "       glintar --help | --version\n"
           "\n"
           "Live crypto prices in the status bar; without an X display, in this terminal.\n"
           "\n"
           "  line             print the price line at each refresh, for terminals and text bars\n"
           "  compare          print once what each coin costs at every source: status 1 with no price at all\n"
           "  diagnose         test once which services can be reached: status 1 when one cannot\n"
           "  coins            the coins that are shown: at most five\n"
           "  source           the service that is asked, and your key for it, read from standard input\n"
           "  display          how prices are shown\n"
           "  --settings       open the settings window, of a Glintar that runs already too\n"
           "  --dashboard      open or close the dashboard of a Glintar that runs; for a bar's click\n"
           "  --once           refresh once and end: status 0 with at least one price, 1 with none\n"
           "  --format FORMAT  text or json; of \"line\" also waybar, i3bar, polybar, tmux, genmon (once)\n"
           "  --fields LIST    what to show, whatever the settings say: price,reference,change,range,sparkline,fee\n"
           "  --coin ID        show this coin alone: bitcoin\n"
           "  --demo           a simulated market and a throw-away profile; asks no real service\n"
           "  --help           this text\n"
           "  --version        the version\n"
           "\n"
           "What the program has to say about its work goes to standard error (2>/dev/null silences it).\n"
           "GLINTAR_CONFIG_SERVER  another configuration server; https, or http for loopback\n";
}

std::expected<Arguments, std::string> parseArguments(std::span<const char* const> arguments) {
    Arguments parsed;
    bool hasFormat = false;
    bool hasOptions = arguments.empty() || arguments.front() != std::string_view("--");
    if (!hasOptions) {
        arguments = arguments.subspan(1);
    }
    const std::string_view first = arguments.empty() ? "" : arguments.front();
    if (isOfSettings(first)) {
        const auto end = std::ranges::find(arguments, std::string_view("--"));
        const bool wantsHelp = std::find(arguments.begin(), end, std::string_view("--help")) != end;
        return Arguments{.command = wantsHelp ? Arguments::Command::Help : Arguments::Command::Settings,
                         .words = {arguments.begin(), arguments.end()}};
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (!hasOptions || !argument.starts_with('-')) {
            const auto command = commandNamed(argument);
            if (!command) {
                return std::unexpected(whyNoCommand(argument, parsed.demo));
            }
            if (parsed.command != Arguments::Command::Desktop) {
                return std::unexpected(fmt::format("\"{}\" is one command too many", argument));
            }
            parsed.command = *command;
        } else if (argument == "--") {
            hasOptions = false;
        } else if (argument == "--help" || argument == "-h") {
            return Arguments{.command = Arguments::Command::Help};
        } else if (argument == "--version") {
            return Arguments{.command = Arguments::Command::Version};
        } else if (argument == "--demo") {
            parsed.demo = true;
        } else if (argument == "--settings") {
            parsed.opens = Opens::Settings;
        } else if (argument == "--dashboard") {
            parsed.opens = Opens::Dashboard;
        } else if (argument == "--once") {
            parsed.once = true;
        } else if (const auto option = argument.substr(0, argument.find('='));
                   option == "--format" || option == "--fields" || option == "--coin") {
            const bool isJoined = option.size() < argument.size();
            if (!isJoined && ++i == arguments.size()) {
                return std::unexpected(fmt::format("{} wants a value: {}=…", option, option));
            }
            const auto applied = apply(option, isJoined ? argument.substr(option.size() + 1) : arguments[i], parsed);
            if (!applied) {
                return std::unexpected(applied.error());
            }
            hasFormat = hasFormat || option == "--format";
        } else {
            return std::unexpected(fmt::format("there is no option \"{}\"", text::oneLine(argument)));
        }
    }
    if (parsed.once && parsed.command != Arguments::Command::Line) {
        return std::unexpected("--once belongs to \"line\": glintar line --once");
    }
    if (hasFormat && parsed.command == Arguments::Command::Desktop) {
        return std::unexpected("--format belongs to a command: glintar line --format");
    }
    if (parsed.opens != Opens::Menu && parsed.command != Arguments::Command::Desktop) {
        return std::unexpected("--settings and --dashboard belong to the desktop: glintar --settings");
    }
    if ((parsed.fields || parsed.coin) && parsed.command != Arguments::Command::Line) {
        return std::unexpected("--fields and --coin belong to \"line\": glintar line --coin bitcoin");
    }
    if (parsed.format > Format::Json && parsed.command != Arguments::Command::Line) {
        return std::unexpected("this format is for \"line\"; there are text and json");
    }
    if (parsed.format == Format::Genmon) {
        parsed.once = true;  // the plugin runs the command anew each time
    }
    return parsed;
}

}  // namespace glintar::app
