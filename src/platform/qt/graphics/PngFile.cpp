#include "platform/qt/graphics/PngFile.h"

#include <fmt/format.h>
#include <png.h>

#include <csetjmp>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace glintar::platform {

namespace {

/// What both ways have in common: libpng leaves a failed step by a jump, which no destructor may be in the way of.
class PngFile {
public:
    PngFile(const PngFile&) = delete;
    PngFile& operator=(const PngFile&) = delete;

    /// Whether the steps came to their end.
    template <class Steps>
    bool attempt(const Steps& steps) {
        if (!info_ || setjmp(png_jmpbuf(file_)) != 0) {
            return false;
        }
        steps();
        return true;
    }

    [[nodiscard]] png_structp file() const { return file_; }
    [[nodiscard]] png_infop info() const { return info_; }
    [[nodiscard]] const std::string& problem() const { return problem_; }

protected:
    explicit PngFile(png_structp (*create)(png_const_charp, png_voidp, png_error_ptr, png_error_ptr))
        : file_(create(PNG_LIBPNG_VER_STRING, this, fail, [](png_structp, png_const_charp) {})),
          info_(file_ ? png_create_info_struct(file_) : nullptr) {}
    ~PngFile() = default;

    png_structp file_;
    png_infop info_;

private:
    [[noreturn]] static void fail(png_structp file, png_const_charp reason) {
        try {
            static_cast<PngFile*>(png_get_error_ptr(file))->problem_ = reason;
        } catch (const std::bad_alloc&) {
            // Then there is no text to it.
        }
        png_longjmp(file, 1);
    }

    std::string problem_;
};

class PngReader final : public PngFile {
public:
    explicit PngReader(std::string_view bytes) : PngFile(png_create_read_struct), left_(bytes) {
        if (file_) {
            png_set_read_fn(file_, this, take);
        }
    }
    ~PngReader() { png_destroy_read_struct(&file_, &info_, nullptr); }

private:
    static void take(png_structp file, png_bytep to, std::size_t count) {
        auto& left = static_cast<PngReader*>(png_get_io_ptr(file))->left_;
        if (count > left.size()) {
            png_error(file, "the file ends too early");
        }
        std::memcpy(to, left.data(), count);
        left.remove_prefix(count);
    }

    std::string_view left_;
};

class PngWriter final : public PngFile {
public:
    PngWriter() : PngFile(png_create_write_struct) {
        if (file_) {
            png_set_write_fn(file_, this, put, [](png_structp) {});
        }
    }
    ~PngWriter() { png_destroy_write_struct(&file_, &info_); }

    std::string bytes;

private:
    static void put(png_structp file, png_bytep from, std::size_t count) {
        bool isPut = true;
        try {
            static_cast<PngWriter*>(png_get_io_ptr(file))->bytes.append(reinterpret_cast<const char*>(from), count);
        } catch (const std::bad_alloc&) {
            isPut = false;
        }
        if (!isPut) {
            png_error(file, "no memory");
        }
    }
};

/// Whatever the file holds becomes eight bits of blue, green, red and alpha.
void askForPixels(png_structp file, png_infop info) {
    png_set_expand(file);
    png_set_scale_16(file);
    png_set_gray_to_rgb(file);
    png_set_add_alpha(file, 0xff, PNG_FILLER_AFTER);
    png_set_bgr(file);
    png_set_interlace_handling(file);
    png_read_update_info(file, info);
}

}  // namespace

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "a QRgb has its blue first");

std::expected<QImage, std::string> readPng(std::string_view bytes, int largest) {
    PngReader reader(bytes);
    const auto problem = [&] { return std::unexpected(fmt::format("unreadable png: {}", reader.problem())); };
    // Texts, profiles and times would take memory and are not wanted.
    const auto readHeader = [&] {
        png_set_keep_unknown_chunks(reader.file(), PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(reader.file(), reader.info());
    };
    if (!reader.attempt(readHeader)) {
        return problem();
    }
    const auto width = png_get_image_width(reader.file(), reader.info());
    const auto height = png_get_image_height(reader.file(), reader.info());
    const auto most = static_cast<png_uint_32>(largest);
    if (width > most || height > most) {
        return std::unexpected(fmt::format("{} x {} pixels are too many", width, height));
    }
    if (!reader.attempt([&] { askForPixels(reader.file(), reader.info()); })) {
        return problem();
    }
    QImage picture(static_cast<int>(width), static_cast<int>(height), QImage::Format_ARGB32);
    if (picture.isNull() ||
        png_get_rowbytes(reader.file(), reader.info()) != static_cast<std::size_t>(picture.bytesPerLine())) {
        return std::unexpected("no memory for a picture");
    }
    std::vector<png_bytep> rows;
    for (int y = 0; y < picture.height(); ++y) {
        rows.push_back(picture.scanLine(y));
    }
    const auto readPixels = [&] {
        png_read_image(reader.file(), rows.data());
        png_read_end(reader.file(), nullptr);
    };
    if (!reader.attempt(readPixels)) {
        return problem();
    }
    return picture;
}

std::string writePng(const QImage& picture) {
    const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
    PngWriter writer;
    const auto write = [&] {
        png_set_IHDR(writer.file(), writer.info(), static_cast<png_uint_32>(pixels.width()),
                     static_cast<png_uint_32>(pixels.height()), 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        // An icon has 16 kB of pixels. The compressor's usual tables, 260 kB, would leave the heap that much larger.
        png_set_compression_window_bits(writer.file(), 12);
        png_set_compression_mem_level(writer.file(), 4);
        png_write_info(writer.file(), writer.info());
        png_set_bgr(writer.file());
        for (int y = 0; y < pixels.height(); ++y) {
            png_write_row(writer.file(), pixels.constScanLine(y));
        }
        png_write_end(writer.file(), nullptr);
    };
    return !pixels.isNull() && writer.attempt(write) ? std::move(writer.bytes) : std::string();
}

}  // namespace glintar::platform
