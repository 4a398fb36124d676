#include "app/Arguments.h"

#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>

namespace glintar::app {

namespace {

std::expected<Format, std::string> formatNamed(std::string_view name) {
    if (name == "text") {
        return Format::Text;
    }
    if (name == "json") {
        return Format::Json;
    }
    return std::unexpected(fmt::format("there is no format \"{}\"; there are text and json", text::oneLine(name)));
}

}  // namespace

std::string_view usage() {
    return "Usage: glintar [--settings] [--demo]\n"
           "       glintar line [--once] [--format text|json] [--demo]\n"
           "       glintar coins list | search TEXT | add TEXT [--ref PRICE] | remove APIID\n"
           "       glintar source list | use ID | key ID\n"
           "       glintar display list | set NAME VALUE\n"
           "       glintar --help | --version\n"
           "\n"
           "Live crypto prices in the status bar; without an X display, in this terminal.\n"
           "\n"
           "  line             print the price line at each refresh, for terminals and text bars\n"
           "  coins            the coins that are shown: at most five\n"
           "  source           the service that is asked, and your key for it, read from standard input\n"
           "  display          how prices are shown\n"
           "  --settings       open the settings window, of a Glintar that runs already too\n"
           "  --once           refresh once and end: status 0 with at least one price, 1 with none\n"
           "  --format FORMAT  text (the default) or json, one value a line; for list and search too\n"
           "  --demo           a simulated market and a throw-away profile; asks no real service\n"
           "  --help           this text\n"
           "  --version        the version\n"
           "\n"
           "What the program has to say about its work goes to standard error (2>/dev/null silences it).\n"
           "GLINTAR_CONFIG_SERVER  another configuration server; https, or http for loopback\n";
}

std::expected<Arguments, std::string> parseArguments(std::span<const char* const> arguments) {
    Arguments parsed;
    std::string_view onlyForLine;
    const std::string_view first = arguments.empty() ? "" : arguments.front();
    if (first == "coins" || first == "source" || first == "display") {
        const bool wantsHelp = std::ranges::find(arguments, std::string_view("--help")) != arguments.end();
        return Arguments{.command = wantsHelp ? Arguments::Command::Help : Arguments::Command::Settings,
                         .words = {arguments.begin(), arguments.end()}};
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            return Arguments{.command = Arguments::Command::Help};
        }
        if (argument == "--version") {
            return Arguments{.command = Arguments::Command::Version};
        }
        if (argument == "--demo") {
            parsed.demo = true;
        } else if (argument == "--settings") {
            parsed.opensSettings = true;
        } else if (argument == "line" && parsed.command != Arguments::Command::Line) {
            parsed.command = Arguments::Command::Line;
        } else if (argument == "--once") {
            parsed.once = true;
            onlyForLine = "--once";
        } else if (argument == "--format" || argument.starts_with("--format=")) {
            const bool isJoined = argument != "--format";
            if (!isJoined && ++i == arguments.size()) {
                return std::unexpected("--format wants a format: text or json");
            }
            const auto format = formatNamed(isJoined ? argument.substr(argument.find('=') + 1) : arguments[i]);
            if (!format) {
                return std::unexpected(format.error());
            }
            parsed.format = *format;
            onlyForLine = "--format";
        } else if (argument == "line") {
            return std::unexpected("\"line\" stands there twice");
        } else {
            const auto kind = argument.starts_with('-') ? "option" : "command";
            return std::unexpected(fmt::format("there is no {} \"{}\"", kind, text::oneLine(argument)));
        }
    }
    if (!onlyForLine.empty() && parsed.command != Arguments::Command::Line) {
        return std::unexpected(fmt::format("{0} belongs to \"line\": glintar line {0}", onlyForLine));
    }
    if (parsed.opensSettings && parsed.command == Arguments::Command::Line) {
        return std::unexpected("--settings belongs to the desktop: glintar --settings");
    }
    return parsed;
}

}  // namespace glintar::app
