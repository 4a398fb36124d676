#include "platform/qt/graphics/IconDecoder.h"

#include "platform/qt/graphics/PngFile.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>
#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace glintar::platform {

namespace {

using std::string_view_literals::operator""sv;

constexpr int kLargestSource = 4'096;  // pixels a side
constexpr int kMegabytes = 64;         // of such a picture
constexpr std::size_t kLargestFile = 64'000'000;
constexpr int kIconsLookedAt = 64;
constexpr std::size_t kJpegTail = 1'024;

/// Qt's name of the format; empty when it is none of ours.
std::string_view formatOf(std::string_view bytes) {
    if (bytes.starts_with("\x89PNG\r\n\x1a\n"sv)) {
        return "png";
    }
    if (bytes.starts_with("\xff\xd8\xff"sv)) {
        return "jpeg";
    }
    if (bytes.starts_with("GIF87a"sv) || bytes.starts_with("GIF89a"sv)) {
        return "gif";
    }
    if (bytes.starts_with("BM"sv)) {
        return "bmp";
    }
    if (bytes.starts_with("\0\0\1\0"sv)) {
        return "ico";
    }
    if (bytes.starts_with("RIFF"sv) && bytes.substr(std::min<std::size_t>(8, bytes.size())).starts_with("WEBP"sv)) {
        return "webp";
    }
    return {};
}

/// Whether the end is missing in a way that Qt's decoder takes for success: it leaves what is missing grey or clear.
bool isCutOff(std::string_view bytes, std::string_view format) {
    if (format == "jpeg") {
        return !bytes.substr(bytes.size() - std::min(bytes.size(), kJpegTail)).contains("\xff\xd9"sv);
    }
    return format == "gif" && bytes[bytes.find_last_not_of("\0\r\n\t "sv)] != ';';
}

void chooseLargest(QImageReader& reader) {
    int best = 0;
    int bestWidth = 0;
    for (int index = 0; index < std::min(reader.imageCount(), kIconsLookedAt); ++index) {
        if (reader.jumpToImage(index) && reader.size().width() > bestWidth) {
            best = index;
            bestWidth = reader.size().width();
        }
    }
    reader.jumpToImage(best);
}

bool isTooLarge(const QSize& size) {
    return size.width() > kLargestSource || size.height() > kLargestSource;
}

QSize iconSize(const QSize& size) {
    if (std::max(size.width(), size.height()) <= kLargestIcon) {
        return size;
    }
    return size.scaled(kLargestIcon, kLargestIcon, Qt::KeepAspectRatio).expandedTo({1, 1});
}

std::expected<QImage, std::string> readByQt(std::string_view bytes, std::string_view format) {
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, QByteArray(format.data(), static_cast<qsizetype>(format.size())));
    // What a file says of its size before its pixels come can be wrong.
    [[maybe_unused]] static const int once = (QImageReader::setAllocationLimit(kMegabytes), 0);
    // Otherwise Qt tries every reader it has, SVG among them.
    reader.setAutoDetectImageFormat(false);
    if (format == "ico") {
        chooseLargest(reader);
    }
    const QSize size = reader.size();
    if (isTooLarge(size)) {
        return std::unexpected(fmt::format("{} x {} pixels are too many", size.width(), size.height()));
    }
    if (format == "jpeg" && !size.isEmpty()) {
        reader.setScaledSize(iconSize(size));  // cheap in this format only
    }
    QImage image = reader.read();
    if (image.isNull()) {
        return std::unexpected(fmt::format("unreadable {}: {}", format, reader.errorString().toStdString()));
    }
    return image;
}

/// The pixels alone.
QImage bare(const QImage& image) {
    QImage copy(image.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        std::memcpy(copy.scanLine(y), image.constScanLine(y), std::size_t(image.width()) * sizeof(QRgb));
    }
    return copy;
}

}  // namespace

std::expected<QImage, std::string> decodeIcon(std::string_view bytes) {
    const std::string_view format = formatOf(bytes);
    if (format.empty() || bytes.size() > kLargestFile) {
        return std::unexpected("not an image of a known format");
    }
    if (isCutOff(bytes, format)) {
        return std::unexpected(fmt::format("the {} file ends too early", format));
    }
    auto picture = format == "png" ? readPng(bytes, kLargestSource) : readByQt(bytes, format);
    if (!picture) {
        return picture;
    }
    QImage& image = *picture;
    const QSize wanted = iconSize(image.size());
    if (isTooLarge(image.size())) {
        return std::unexpected("too many pixels");
    }
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return std::unexpected("no memory for a picture");
    }
    if (wanted != image.size()) {
        image = image.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    return bare(image);
}

}  // namespace glintar::platform
