#include "menubar/Badge.h"

#include "menubar/PillColors.h"
#include "presenter/SystemColors.h"
#include "text/Unicode.h"

#include <algorithm>

namespace glintar::menubar {

using platform::Font;

namespace {

constexpr double kHeight = 18;
constexpr double kSpaceBesideText = 10;  // both sides together
constexpr Font kFont{.size = 10, .weight = Font::Weight::Bold};

}  // namespace

Badge::Badge(const platform::Graphics& graphics, std::string_view displayName)
    : text_(badgeText(displayName)), textSize_(graphics.measure(text_, kFont)) {}

double Badge::width() const {
    return std::max(kHeight, textSize_.width + kSpaceBesideText);
}

void Badge::draw(platform::Canvas& canvas, const platform::Point& origin, platform::Appearance appearance) const {
    canvas.fillRounded({origin.x, origin.y, width(), kHeight}, kHeight / 2,
                       presenter::systemColor(presenter::SystemColor::Blue, appearance));
    canvas.drawText(text_, {origin.x + (width() - textSize_.width) / 2, origin.y + (kHeight - textSize_.height) / 2},
                    kFont, platform::Color::white(1));
}

std::string badgeText(std::string_view displayName) {
    static constexpr std::size_t kMostBytes = 512;
    if (displayName.size() > kMostBytes) {
        std::size_t end = kMostBytes;
        while (end > 0 && (static_cast<unsigned char>(displayName[end]) & 0xc0) == 0x80) {
            --end;
        }
        displayName = displayName.substr(0, end);
    }
    return text::oneLine(text::upper(text::trimmed(text::firstCharacters(displayName, 8))));
}

}  // namespace glintar::menubar
