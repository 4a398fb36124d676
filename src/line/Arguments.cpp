#include "line/Arguments.h"

#include <fmt/format.h>

namespace glintar::line {

namespace {

std::expected<Format, std::string> formatNamed(std::string_view name) {
    if (name == "text") {
        return Format::Text;
    }
    if (name == "json") {
        return Format::Json;
    }
    return std::unexpected(fmt::format("no format is called \"{}\"; there are text and json", name));
}

}  // namespace

std::string_view usage() {
    return "Usage: glintar [--demo]\n"
           "       glintar line [--once] [--format text|json] [--demo]\n"
           "       glintar --help | --version\n"
           "\n"
           "Live crypto prices in the status bar; without a display, in this terminal.\n"
           "\n"
           "  line             print the price line at each refresh, for terminals and text bars\n"
           "  --once           refresh once and end: status 0 with at least one price, 1 with none\n"
           "  --format FORMAT  text (the default) or json, one object a line\n"
           "  --demo           a simulated market and a throw-away profile; asks no real service\n"
           "  --help           this text\n"
           "  --version        the version\n"
           "\n"
           "GLINTAR_CONFIG_SERVER  another configuration server; https, or http for loopback\n";
}

std::expected<Arguments, std::string> parseArguments(std::span<const char* const> arguments) {
    Arguments parsed;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const bool isLine = parsed.command == Arguments::Command::Line;
        if (argument == "--help" || argument == "-h") {
            return Arguments{.command = Arguments::Command::Help};
        }
        if (argument == "--version") {
            return Arguments{.command = Arguments::Command::Version};
        }
        if (argument == "--demo") {
            parsed.demo = true;
        } else if (argument == "line" && !isLine) {
            parsed.command = Arguments::Command::Line;
        } else if (argument == "--once" && isLine) {
            parsed.once = true;
        } else if (argument.starts_with("--format") && isLine) {
            const bool isJoined = argument.starts_with("--format=");
            if (!isJoined && (argument != "--format" || ++i == arguments.size())) {
                return std::unexpected("--format wants a format: text or json");
            }
            const auto format = formatNamed(isJoined ? argument.substr(argument.find('=') + 1) : arguments[i]);
            if (!format) {
                return std::unexpected(format.error());
            }
            parsed.format = *format;
        } else {
            return std::unexpected(fmt::format("what is \"{}\"?", argument));
        }
    }
    return parsed;
}

}  // namespace glintar::line
