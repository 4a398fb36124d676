#include "demo/CoinPicture.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace glintar::demo {

namespace {

constexpr int kSize = 64;
constexpr int kShades = 16;  // of see-through to opaque

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
    const auto hash = crc32(0, reinterpret_cast<const Bytef*>(id.data()), static_cast<uInt>(id.size()));
    const auto part = [&](unsigned shift) { return static_cast<std::uint8_t>(64 + ((hash >> shift) & 0x7f)); };
    return {part(0), part(8), part(16)};
}

void append32(std::string& to, unsigned long value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        to += static_cast<char>((value >> shift) & 0xff);
    }
}

void appendChunk(std::string& png, std::string_view type, std::string_view data) {
    append32(png, data.size());
    const std::string checked = std::string(type).append(data);
    png += checked;
    append32(png, crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size())));
}

/// One byte a pixel: the shade of a disk with a hole in its middle. Each row begins with its filter, none.
std::string pixels() {
    std::string rows;
    for (int y = 0; y < kSize; ++y) {
        rows += '\0';
        for (int x = 0; x < kSize; ++x) {
            const double distance = std::hypot(x - kSize / 2.0 + 0.5, y - kSize / 2.0 + 0.5);
            const double inside = std::min(kSize / 2.0 - distance, distance - kSize / 8.0);
            rows += static_cast<char>(std::lround(std::clamp(inside, 0.0, 1.0) * kShades));
        }
    }
    return rows;
}

}  // namespace

std::string coinPicture(std::string_view id) {
    const Colour colour = colourOf(id);
    std::string palette;
    std::string opacity;
    for (int shade = 0; shade <= kShades; ++shade) {
        palette.append(
            {static_cast<char>(colour.red), static_cast<char>(colour.green), static_cast<char>(colour.blue)});
        opacity += static_cast<char>(shade * 255 / kShades);
    }
    const std::string rows = pixels();
    uLongf size = compressBound(rows.size());
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(rows.data()), rows.size());
    packed.resize(size);

    std::string header;
    append32(header, kSize);
    append32(header, kSize);
    header.append({8, 3, 0, 0, 0});  // bits, palette, and the only methods there are
    std::string png = "\x89PNG\r\n\x1a\n";
    appendChunk(png, "IHDR", header);
    appendChunk(png, "PLTE", palette);
    appendChunk(png, "tRNS", opacity);
    appendChunk(png, "IDAT", packed);
    appendChunk(png, "IEND", "");
    return png;
}

}  // namespace glintar::demo
