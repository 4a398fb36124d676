#include "platform/virtual/VirtualGraphics.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace glintar::platform {

namespace {

const std::string& nameOf(const Image& image) {
    return dynamic_cast<const VirtualImage&>(image).name;
}

std::shared_ptr<const VirtualImage> copyOf(const Image& image) {
    return std::make_shared<VirtualImage>(dynamic_cast<const VirtualImage&>(image));
}

class RecordingCanvas final : public Canvas {
public:
    RecordingCanvas(const Graphics& graphics, std::vector<Drawn>& operations)
        : graphics_(graphics), operations_(operations) {}

    void fillRounded(const Rect& rect, double radius, const Color& color) override {
        operations_.push_back({.kind = Drawn::Kind::Fill, .frame = rect, .color = color, .radius = radius});
    }
    void strokeRounded(const Rect& rect, double radius, const Color& color, double width) override {
        operations_.push_back(
            {.kind = Drawn::Kind::Stroke, .frame = rect, .color = color, .radius = radius, .lineWidth = width});
    }
    void drawText(std::string_view text, const Point& origin, const Font& font, const Color& color) override {
        const Size size = graphics_.measure(text, font);
        operations_.push_back({.kind = Drawn::Kind::Text,
                               .frame = {origin.x, origin.y, size.width, size.height},
                               .text = std::string(text),
                               .font = font,
                               .color = color});
    }
    void drawImage(const Image& image, const Rect& rect, double opacity) override {
        operations_.push_back({.kind = Drawn::Kind::Image,
                               .frame = rect,
                               .text = nameOf(image),
                               .opacity = opacity,
                               .image = copyOf(image)});
    }
    void drawImageInPie(const Image& image, const Rect& rect, const Arc& pie) override {
        operations_.push_back({.kind = Drawn::Kind::Pie, .frame = rect, .text = nameOf(image), .arc = pie});
    }
    void strokeLine(std::span<const Point> points, const Color& color, double width) override {
        operations_.push_back(
            {.kind = Drawn::Kind::Line, .color = color, .lineWidth = width, .points = {points.begin(), points.end()}});
    }
    void strokeArc(const Arc& arc, const Color& color, double width, Caps) override {
        operations_.push_back({.kind = Drawn::Kind::Arc, .color = color, .lineWidth = width, .arc = arc});
    }

private:
    const Graphics& graphics_;
    std::vector<Drawn>& operations_;
};

}  // namespace

std::vector<Drawn> VirtualImage::all(Drawn::Kind kind) const {
    std::vector<Drawn> found;
    std::ranges::copy_if(operations, std::back_inserter(found), [&](const Drawn& drawn) { return drawn.kind == kind; });
    return found;
}

const Drawn& VirtualImage::text(std::string_view words) const {
    const auto found = std::ranges::find_if(
        operations, [&](const Drawn& drawn) { return drawn.kind == Drawn::Kind::Text && drawn.text == words; });
    if (found == operations.end()) {
        fmt::print(stderr, "nobody drew the text \"{}\"\n", words);
        std::abort();
    }
    return *found;
}

Size VirtualGraphics::measure(std::string_view text, const Font& font) const {
    const auto characters = std::ranges::count_if(text, [](char byte) { return (byte & 0xc0) != 0x80; });
    return {0.6 * font.size * static_cast<double>(characters), 1.2 * font.size};
}

ImagePtr VirtualGraphics::draw(const Size& size, double scale, const std::function<void(Canvas&)>& paint) const {
    ++drawings;
    auto image = std::make_shared<VirtualImage>("drawn", size);
    image->scale = scale;
    RecordingCanvas canvas(*this, image->operations);
    paint(canvas);
    return image;
}

ImagePtr VirtualGraphics::withShadow(const ImagePtr& image, const Shadow& shadow) const {
    auto copy = std::make_shared<VirtualImage>(drawn(image));
    copy->shadow = shadow;
    return copy;
}

ImagePtr VirtualGraphics::image(std::string_view name) const {
    return images.contains(name) ? std::make_shared<VirtualImage>(std::string(name), Size{64, 64}) : nullptr;
}

ImagePtr VirtualGraphics::fitted(const ImagePtr& image, const Size& box) const {
    return std::make_shared<VirtualImage>(nameOf(*image), fittedSize(image->size(), box));
}

ImagePtr VirtualGraphics::symbol(std::string_view name, double fontSize, const Color& color) const {
    if (missingSymbols.contains(name)) {
        return nullptr;
    }
    auto image = std::make_shared<VirtualImage>(std::string(name), Size{fontSize, fontSize});
    image->operations.push_back({.kind = Drawn::Kind::Fill, .color = color});
    return image;
}

std::expected<ImagePtr, std::string> VirtualGraphics::decode(std::string_view bytes) const {
    constexpr std::string_view kStart = "image ";
    const auto cross = bytes.find('x', kStart.size());
    const auto blank = bytes.find(' ', kStart.size());
    if (!bytes.starts_with(kStart) || cross == std::string_view::npos || blank == std::string_view::npos) {
        return std::unexpected("not an image");
    }
    int width = 0;
    int height = 0;
    std::from_chars(bytes.data() + kStart.size(), bytes.data() + cross, width);
    std::from_chars(bytes.data() + cross + 1, bytes.data() + blank, height);
    return std::make_shared<VirtualImage>(std::string(bytes.substr(blank + 1)),
                                          Size{static_cast<double>(width), static_cast<double>(height)});
}

std::string VirtualGraphics::png(const Image& image) const {
    return fmt::format("image {}x{} {}", image.size().width, image.size().height, nameOf(image));
}

}  // namespace glintar::platform
