#include "platform/posix/XdgLoginItem.h"

#include "platform/Files.h"
#include "platform/posix/XdgDirectories.h"

#include <fmt/format.h>

#include <map>
#include <optional>

namespace glintar::platform {

namespace {

std::optional<std::filesystem::path> entryPath() {
    const auto own = XdgDirectories::configuration();
    return own ? std::optional(own->parent_path() / "autostart" / "org.glintar.Glintar.desktop") : std::nullopt;
}

/// An argument of the Exec key: in quotes, with its own characters escaped, and once more as a value of the file ("The
/// Exec key" of the Desktop Entry Specification).
std::string execArgument(std::string_view path) {
    std::string quoted = "\"";
    for (const char c : path) {
        if (c == '"' || c == '`' || c == '$') {
            quoted += "\\\\";
        } else if (c == '\\') {
            quoted += "\\\\\\";
        } else if (c == '%') {
            quoted += '%';
        }
        quoted += c;
    }
    return quoted + '"';
}

/// The keys of the group that counts. None without that group.
std::optional<std::map<std::string, std::string, std::less<>>> keysOf(std::string_view text) {
    std::optional<std::map<std::string, std::string, std::less<>>> keys;
    bool isOurs = false;
    while (!text.empty()) {
        const auto line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.starts_with('[')) {
            isOurs = line == "[Desktop Entry]";
            if (isOurs && !keys) {
                keys.emplace();
            }
        } else if (const auto equals = line.find('='); isOurs && equals != std::string_view::npos) {
            const auto name = line.substr(0, line.find_last_not_of(" \t", equals - 1) + 1);
            const auto value = line.find_first_not_of(" \t", equals + 1);
            keys->emplace(name, value == std::string_view::npos ? "" : line.substr(value));
        }
    }
    return keys;
}

/// Whether one of `names` (with semicolons after them) is one of `desktops`.
bool holdsOneOf(std::string_view names, std::string_view desktops) {
    while (!desktops.empty()) {
        const auto desktop = desktops.substr(0, desktops.find(':'));
        desktops.remove_prefix(std::min(desktop.size() + 1, desktops.size()));
        if (!desktop.empty() && fmt::format(";{};", names).contains(fmt::format(";{};", desktop))) {
            return true;
        }
    }
    return false;
}

}  // namespace

XdgLoginItem::XdgLoginItem(Files& files, std::filesystem::path program, std::string_view desktops)
    : files_(files), program_(std::move(program)), desktops_(desktops) {}

bool XdgLoginItem::isEnabled() const {
    const auto path = entryPath();
    const auto text = path ? files_.read(*path) : std::unexpected(std::string());
    const auto keys = text ? keysOf(*text) : std::nullopt;
    if (!keys) {
        return false;
    }
    const auto is = [&](std::string_view key, std::string_view value) {
        const auto found = keys->find(key);
        return found != keys->end() && found->second == value;
    };
    const auto only = keys->find("OnlyShowIn");
    const auto never = keys->find("NotShowIn");
    return keys->contains("Exec") && !is("Hidden", "true") && !is("X-GNOME-Autostart-enabled", "false") &&
           (only == keys->end() || holdsOneOf(only->second, desktops_)) &&
           (never == keys->end() || !holdsOneOf(never->second, desktops_));
}

LoginItem::Outcome XdgLoginItem::registerItem() {
    const auto path = entryPath();
    if (!path) {
        return std::unexpected("There is no home directory.");
    }
    auto outcome = files_.makeDirectories(path->parent_path());
    if (outcome) {
        outcome = files_.replace(*path, fmt::format("[Desktop Entry]\nType=Application\nName=Glintar\n"
                                                    "Comment=Live crypto prices in the status bar\nExec={}\n"
                                                    "Icon=org.glintar.Glintar\nTerminal=false\n",
                                                    execArgument(program_.string())));
    }
    return outcome ? outcome : std::unexpected(fmt::format("{}: {}", path->string(), outcome.error()));
}

LoginItem::Outcome XdgLoginItem::unregisterItem() {
    const auto path = entryPath();
    if (!path) {
        return std::unexpected("There is no home directory.");
    }
    const auto outcome = files_.remove(*path);
    return outcome ? outcome : std::unexpected(fmt::format("{}: {}", path->string(), outcome.error()));
}

void XdgLoginItem::repair() {
    const auto path = entryPath();
    const auto text = path ? files_.read(*path) : std::unexpected(std::string());
    if (isEnabled() && keysOf(*text)->at("Exec") != execArgument(program_.string())) {
        std::ignore = registerItem();  // an entry that cannot be written stays as it was
    }
}

}  // namespace glintar::platform
