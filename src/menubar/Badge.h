#pragma once

#include "platform/Graphics.h"

#include <string>
#include <string_view>

namespace glintar::menubar {

/// Stands in for the icon of a coin that has none: a capsule with the beginning of the coin's name.
class Badge {
public:
    Badge(const platform::Graphics& graphics, std::string_view displayName);

    [[nodiscard]] double width() const;

    /// With its bottom left corner at the origin.
    void draw(platform::Canvas& canvas, const platform::Point& origin, platform::Appearance appearance) const;

private:
    std::string text_;
    platform::Size textSize_;
};

/// The text of the badge: the first 8 characters of the name, in upper case, fit for one line. At most 1.5 kB, however
/// many marks the user heaps upon one character.
[[nodiscard]] std::string badgeText(std::string_view displayName);

}  // namespace glintar::menubar
