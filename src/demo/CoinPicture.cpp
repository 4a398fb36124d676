#include "demo/CoinPicture.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace glintar::demo {

namespace {

constexpr int kSize = 64;

struct Colour {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

Colour colourOf(std::string_view id) {
    if (id == "bitcoin") {
        return {247, 147, 26};
    }
    if (id == "ethereum") {
        return {98, 126, 234};
    }
    const auto hash = std::hash<std::string_view>()(id);
    const auto part = [&](unsigned shift) { return static_cast<std::uint8_t>(64 + ((hash >> shift) & 0x7f)); };
    return {part(0), part(8), part(16)};
}

}  // namespace

std::string coinPicture(std::string_view id) {
    const Colour colour = colourOf(id);
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {  // a disk with a hole in its middle
            const double distance = std::hypot(x - kSize / 2.0 + 0.5, y - kSize / 2.0 + 0.5);
            const double inside = std::min(kSize / 2.0 - distance, distance - kSize / 8.0);
            pixels.insert(pixels.end(), {colour.red, colour.green, colour.blue,
                                         static_cast<std::uint8_t>(std::lround(std::clamp(inside, 0.0, 1.0) * 255))});
        }
    }
    png_image picture{};
    picture.version = PNG_IMAGE_VERSION;
    picture.width = picture.height = kSize;
    picture.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(picture);
    std::string bytes(size, '\0');
    png_image_write_to_memory(&picture, bytes.data(), &size, 0, pixels.data(), 0, nullptr);
    bytes.resize(size);
    return bytes;
}

}  // namespace glintar::demo
