#include "platform/qt/graphics/PngFile.h"

#include <fmt/format.h>
#include <png.h>

namespace glintar::platform {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "a QRgb has its blue first");

std::expected<QImage, std::string> readPng(std::string_view bytes, int largest) {
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&file, bytes.data(), bytes.size()) == 0) {
        return std::unexpected(fmt::format("unreadable png: {}", file.message));
    }
    const auto most = static_cast<png_uint_32>(largest);
    const bool isTooLarge = file.width > most || file.height > most;
    QImage picture;
    if (!isTooLarge) {
        picture = QImage(static_cast<int>(file.width), static_cast<int>(file.height), QImage::Format_ARGB32);
    }
    if (picture.isNull()) {
        png_image_free(&file);
        return std::unexpected(fmt::format("{} x {} pixels are too many", file.width, file.height));
    }
    file.format = PNG_FORMAT_BGRA;
    file.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;  // libpng would take 16 bits for linear light
    if (png_image_finish_read(&file, nullptr, picture.bits(), 0, nullptr) == 0) {
        return std::unexpected(fmt::format("unreadable png: {}", file.message));
    }
    return picture;
}

std::string writePng(const QImage& picture) {
    const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    file.width = static_cast<png_uint_32>(pixels.width());
    file.height = static_cast<png_uint_32>(pixels.height());
    file.format = PNG_FORMAT_BGRA;
    png_alloc_size_t size = pixels.isNull() ? 0 : PNG_IMAGE_PNG_SIZE_MAX(file);
    std::string bytes(size, '\0');
    const bool isWritten =
        size > 0 && png_image_write_to_memory(&file, bytes.data(), &size, 0, pixels.constBits(), 0, nullptr) != 0;
    bytes.resize(isWritten ? size : 0);
    return bytes;
}

}  // namespace glintar::platform
