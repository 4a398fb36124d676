#include "platform/qt/graphics/IconDecoder.h"
#include "platform/qt/graphics/PngFile.h"

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QColorSpace>
#include <QImage>
#include <gmock/gmock.h>

#include <cstdlib>

namespace glintar::platform {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;

/// Red on its left half, blue on its right one.
QImage flag(int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32);
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < height; ++y) {
            image.setPixelColor(x, y, x < width / 2 ? Qt::red : Qt::blue);
        }
    }
    return image;
}

std::string file(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format, 90)) << format;
    return bytes.toStdString();
}

std::string half(const std::string& bytes) {
    return bytes.substr(0, bytes.size() / 2);
}

std::string patched(std::string bytes, std::size_t at, const std::string& with) {
    return bytes.replace(at, with.size(), with);
}

/// A PNG whose header claims 20,000 x 20,000 pixels, with the checksum that belongs to it.
std::string boastfulPng() {
    std::string bytes = patched(file(flag(2, 2), "png"), 16, "\0\0\x4e\x20\0\0\x4e\x20"s);
    std::uint32_t sum = 0xffffffff;
    for (std::size_t at = 12; at < 29; ++at) {
        sum ^= static_cast<unsigned char>(bytes[at]);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320 : 0);
        }
    }
    for (std::size_t index = 0; index < 4; ++index) {
        bytes[29 + index] = static_cast<char>(~sum >> (24 - 8 * index));
    }
    return bytes;
}

/// Two pictures of one pixel, red and blue, on a screen of that size.
std::string gif(const std::string& screen = "\1\0\1\0"s) {
    const std::string picture = ",\0\0\0\0\1\0\1\0\0\2\2"s;
    return "GIF89a" + screen + "\x80\0\0\xff\0\0\0\0\xff"s + picture + "\x44\1\0"s + picture + "\x4c\1\0;"s;
}

/// An icon file of PNG pictures, each said to be so wide and high.
std::string ico(const std::vector<std::pair<int, std::string>>& pictures) {
    const auto little = [](std::size_t value) {
        return std::string{static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16), 0};
    };
    std::string directory = "\0\0\1\0"s + static_cast<char>(pictures.size()) + '\0';
    std::string data;
    for (const auto& [side, png] : pictures) {
        directory += std::string(2, static_cast<char>(side)) + "\0\0\1\0\x20\0"s + little(png.size()) +
                     little(6 + 16 * pictures.size() + data.size());
        data += png;
    }
    return directory + data;
}

TEST(DecodeTest, LargePicturesOfAnyFormatBecomeSmallOnesOfTheSameShape) {
    for (const char* const format : {"png", "jpeg", "bmp", "ico", "webp"}) {
        const auto icon = decodeIcon(file(flag(200, 100), format));
        ASSERT_TRUE(icon) << format << icon.error();
        EXPECT_EQ(icon->size(), QSize(64, 32)) << format;
        EXPECT_EQ(icon->format(), QImage::Format_ARGB32_Premultiplied) << format;
        const QColor left = icon->pixelColor(5, 16), right = icon->pixelColor(60, 16);
        EXPECT_TRUE(left.red() > 240 && left.blue() < 20 && right.blue() > 240 && right.red() < 20) << format;
    }
}

/// Half transparent red with a dark and a green pixel in it.
QImage mixture() {
    QImage image(5, 5, QImage::Format_ARGB32);
    image.fill(qRgba(255, 0, 0, 128));
    image.setPixel(1, 1, qRgba(16, 32, 48, 255));
    image.setPixel(3, 3, qRgba(0, 255, 0, 64));
    return image;
}

TEST(DecodeTest, APngHasThePixelsThatQtReads) {
    for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_RGBA64,
                              QImage::Format_Grayscale16, QImage::Format_Indexed8, QImage::Format_Mono}) {
        const std::string bytes = file(mixture().convertToFormat(format), "png");
        const auto icon = decodeIcon(bytes);
        ASSERT_TRUE(icon) << icon.error();
        const QImage expected = QImage::fromData(QByteArray::fromStdString(bytes), "png");
        for (int at = 0; at < 25; ++at) {
            const QColor ours = icon->pixelColor(at % 5, at / 5);
            const QColor qts = expected.pixelColor(at % 5, at / 5);
            EXPECT_TRUE(std::abs(ours.red() - qts.red()) <= 2 && std::abs(ours.green() - qts.green()) <= 2 &&
                        std::abs(ours.blue() - qts.blue()) <= 2 && std::abs(ours.alpha() - qts.alpha()) <= 1)
                << format << ' ' << at << ' ' << ours.name(QColor::HexArgb).toStdString() << " instead of "
                << qts.name(QColor::HexArgb).toStdString();
        }
    }
}

TEST(DecodeTest, WritesPngFilesThatHaveThePixels) {
    const QByteArray bytes = QByteArray::fromStdString(writePng(mixture()));
    QImage read = QImage::fromData(bytes, "png").convertToFormat(QImage::Format_ARGB32);
    read.setColorSpace({});
    EXPECT_EQ(read, mixture());
    EXPECT_EQ(writePng({}), "");
}

TEST(DecodeTest, TakesTheFirstPictureOfAnAnimationAndTheLargestOfAnIconFile) {
    const auto first = decodeIcon(gif());
    ASSERT_TRUE(first) << first.error();
    EXPECT_EQ(first->pixelColor(0, 0), QColor(Qt::red));

    const auto largest = decodeIcon(
        ico({{16, file(flag(16, 16), "png")}, {48, file(flag(48, 48), "png")}, {32, file(flag(32, 32), "png")}}));
    ASSERT_TRUE(largest) << largest.error();
    EXPECT_EQ(largest->size(), QSize(48, 48)) << "and small pictures stay as they are";
}

TEST(DecodeTest, TransparentPixelsDoNotDarkenTheirNeighboursWhenMadeSmaller) {
    QImage stripes(256, 256, QImage::Format_ARGB32);
    for (int x = 0; x < 256; ++x) {
        for (int y = 0; y < 256; ++y) {
            stripes.setPixel(x, y, x % 2 == 0 ? qRgba(255, 255, 255, 255) : qRgba(0, 0, 0, 0));
        }
    }
    const auto icon = decodeIcon(file(stripes, "png"));
    ASSERT_TRUE(icon) << icon.error();
    const QColor mixed = icon->pixelColor(32, 32);
    EXPECT_NEAR(mixed.alpha(), 128, 4);
    EXPECT_GT(mixed.red(), 250);
}

TEST(DecodeTest, RefusesWhatIsNoPictureOrTooLargeAOne) {
    struct Row {
        std::string bytes, reason;
    };
    const std::string svg =
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="8"><rect width="8" height="8"/></svg>)";
    const std::string png = file(flag(90, 90), "png"), jpeg = file(flag(8, 8), "jpeg");
    for (int number = 0;
         const auto& [bytes, reason] : {
             Row{"", "known format"},
             Row{"\x89", "known format"},
             Row{"<html><body>404</body></html>", "known format"},
             Row{svg, "known format"},
             Row{"/* XPM */\nstatic char *a[] = {\"1 1 1 1\", \"a c #ff0000\", \"a\"};", "known format"},
             Row{"\x89PNG\r\n\x1a\n" + svg, "unreadable png"},
             Row{half(png), "unreadable png"},
             Row{patched(png, png.find("IDAT") + 8, "?"), "unreadable png"},
             Row{half(file(flag(90, 90), "jpeg")), "too early"},
             Row{half(file(flag(90, 90), "webp")), "unreadable webp"},
             Row{gif().substr(0, 32), "too early"},
             Row{boastfulPng(), "20000 x 20000 pixels are too many"},
             Row{patched(file(flag(2, 2), "bmp"), 18, "\x88\x13\0\0\x88\x13\0\0"s), "5000 x 5000 pixels are too many"},
             Row{patched(jpeg, jpeg.find("\xff\xc0") + 5, "\x4e\x20\x4e\x20"), "20000 x 20000 pixels are too many"},
             Row{gif("\x88\x13\x88\x13"), "unreadable gif"},
             Row{ico({{16, boastfulPng()}}), "unreadable ico"},
         }) {
        const auto icon = decodeIcon(bytes);
        ++number;
        ASSERT_FALSE(icon) << number;
        EXPECT_THAT(icon.error(), HasSubstr(reason)) << number;
    }
}

}  // namespace
}  // namespace glintar::platform
