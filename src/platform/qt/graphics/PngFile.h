#pragma once

#include <QImage>

#include <expected>
#include <string>
#include <string_view>

namespace glintar::platform {

/// Reads a PNG file of at most so many pixels a side: larger ones are refused before memory is taken for them. A
/// colour profile is passed over. The result is `ARGB32`, the error a short text.
///
/// By libpng itself, since Qt loads every picture format that it has, with their libraries, before it reads or writes
/// its first PNG.
[[nodiscard]] std::expected<QImage, std::string> readPng(std::string_view bytes, int largest);

/// The picture as a PNG file; empty when there is none.
[[nodiscard]] std::string writePng(const QImage& picture);

}  // namespace glintar::platform
