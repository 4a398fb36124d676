#pragma once

#include <QImage>

#include <expected>
#include <string>
#include <string_view>

namespace glintar::platform {

/// The longer side of what `decodeIcon` gives, in pixels: icons are shown at 18 points, at ratio 3 with room to spare.
inline constexpr int kLargestIcon = 64;

/// Reads an icon that came from somewhere we do not trust: PNG, JPEG, GIF (its first picture), BMP, ICO (its largest)
/// or WebP, recognised by its first bytes and never anything else. More than 4,096 pixels a side are refused before
/// memory is taken for them, and so is a file that ends too early, since half an icon is worse than the name in its
/// place. The result is `ARGB32_Premultiplied`, without whatever texts and profiles the file carried. The error is a
/// short text.
[[nodiscard]] std::expected<QImage, std::string> decodeIcon(std::string_view bytes);

}  // namespace glintar::platform
