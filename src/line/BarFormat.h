#pragma once

#include "app/Arguments.h"
#include "presenter/StatusLine.h"

#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::line {

/// What a text bar is given.
struct BarLine {
    presenter::StatusLine line;
    std::string prefix;                       ///< before the text
    std::string tooltip;                      ///< how the last refresh ended
    std::optional<std::string> updated = {};  ///< when the newest price came, by RFC 3339
    int percentage = 0;                       ///< of the time to the next refresh that has passed
};

/// The line without what the user did not ask for. Parts that the preferences hide are shown when they are asked for;
/// a fee is there only when the preferences want one.
[[nodiscard]] presenter::StatusLine selected(presenter::StatusLine line, const std::optional<app::Fields>& fields,
                                             const std::optional<std::string>& coin);

/// The words with what begins markup in tmux ("#") or polybar ("%{") made harmless; as they are in other formats.
[[nodiscard]] std::string escaped(app::Format format, std::string text);

/// One object for Waybar's custom module (waybar-custom(5), "json"): text and tooltip are Pango markup. "class" holds
/// "ok", "stale" (older prices are shown) or "error" (there is none), then "up" or "down" by the first coin's change.
/// The bar passes over the other members, which are those of our own JSON.
[[nodiscard]] std::string waybarText(const BarLine& bar);

/// What xfce4-genmon reads, in its tags. A click opens the dashboard of the desktop program.
[[nodiscard]] std::string genmonText(const BarLine& bar);

// The i3bar protocol (i3wm.org/docs/i3bar-protocol.html): the header, then one line of blocks a refresh.
// The bar sends the first signal when it is hidden and the second when it is seen again. By default it would stop the
// program, whose connections then time out, and sometimes never wake it.
inline constexpr int kStopSignal = SIGUSR2;
inline constexpr int kContSignal = SIGCONT;
[[nodiscard]] std::string i3barHeader();
[[nodiscard]] std::string i3barText(const BarLine& bar);

/// The mouse button of a click as i3bar tells it, one object a line in an endless array; none for anything else.
[[nodiscard]] std::optional<std::int64_t> clickedButton(std::string_view line);

}  // namespace glintar::line
