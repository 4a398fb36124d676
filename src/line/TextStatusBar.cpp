#include "line/TextStatusBar.h"

#include "line/BarFormat.h"
#include "line/LineFormat.h"
#include "platform/Machine.h"
#include "platform/TextOutput.h"
#include "presenter/LineText.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace glintar::line {

TextStatusBar::TextStatusBar(platform::TextOutput& output, const platform::LocalTime& local, Options options)
    : output_(output), local_(local), options_(std::move(options)), text_(options_.prefix + "Loading...") {}

void TextStatusBar::start() {
    if (options_.isLive) {
        redraw();
    } else if (options_.format == app::Format::I3bar) {
        output_.printLine(i3barHeader());
    }
}

void TextStatusBar::showLine(const presenter::StatusLine& line, std::optional<std::string> tooltip) {
    line_ = selected(line, options_.fields, options_.coin);
    text_ = options_.prefix + presenter::plainText(line_);
    if (tooltip) {
        tooltip_ = *std::move(tooltip);
    }
    if (options_.isLive) {
        redraw();
    }
}

void TextStatusBar::refreshCompleted() {
    if (!options_.isLive) {
        output_.printLine(printed());
    }
    if (onRefreshed) {
        const bool showsOnlyFee = options_.fields && !options_.fields->hasCoins();
        onRefreshed(!line_.coins.empty() || (showsOnlyFee && line_.gas));
    }
}

std::string TextStatusBar::printed() const {
    const auto bar = [this] {
        const auto newest = line_.newest();
        return BarLine{.line = line_,
                       .prefix = options_.prefix,
                       .tooltip = tooltip_,
                       .updated = newest ? std::optional(local_.timestamp(newest->time)) : std::nullopt,
                       .percentage = options_.percentage ? options_.percentage() : 0};
    };
    switch (options_.format) {
        case app::Format::Text:
            return text_;
        case app::Format::Json:
            return jsonText(line_, local_, text_, tooltip_);
        case app::Format::Waybar:
            return waybarText(bar());
        case app::Format::I3bar:
            return i3barText(bar());
        case app::Format::Genmon:
            return genmonText(bar());
        case app::Format::Tmux:
        case app::Format::Polybar:
            return escaped(options_.format, text_);
    }
    return text_;
}

platform::Seconds TextStatusBar::showProgress(const presenter::RefreshProgress& countdown) {
    static constexpr std::array<std::string_view, 4> kPies{"○", "◔", "◑", "◕"};
    const auto quarter = static_cast<std::size_t>(countdown.elapsed * kPies.size());
    const double remaining = std::max(countdown.remaining.count(), 0.0);
    const double seconds = std::ceil(remaining);
    auto text = fmt::format("{} {:2.0f}s ", kPies[std::min(quarter, kPies.size() - 1)], seconds);
    if (text != countdown_) {
        countdown_ = std::move(text);
        redraw();
    }
    return platform::Seconds(remaining > 0 ? remaining - (seconds - 1) : 1);
}

void TextStatusBar::redraw() {
    output_.redrawLine(countdown_ + text_);
}

}  // namespace glintar::line
