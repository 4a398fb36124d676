#pragma once

#include "platform/Graphics.h"

#include <atomic>
#include <set>
#include <string>
#include <vector>

namespace glintar::platform {

class VirtualImage;

/// One operation on a canvas; what does not belong to its kind is left as it is by default.
struct Drawn {
    enum class Kind { Fill, Stroke, Text, Image, Pie, Line, Arc };
    Kind kind = Kind::Fill;
    Rect frame;        ///< of a text: its line box
    std::string text;  ///< of an image: its name
    Font font;
    Color color;
    double radius = 0;
    double lineWidth = 0;
    double opacity = 1;
    std::vector<Point> points;
    Canvas::Arc arc;
    std::shared_ptr<const VirtualImage> image;  ///< a copy of it
};

/// Remembers what was drawn instead of drawing it.
class VirtualImage final : public Image {
public:
    VirtualImage(std::string imageName, Size imageSize) : name(std::move(imageName)), size_(imageSize) {}
    Size size() const override { return size_; }
    std::size_t byteCount() const override { return static_cast<std::size_t>(size_.width * size_.height) * 4; }

    /// The operations of a kind, in order.
    [[nodiscard]] std::vector<Drawn> all(Drawn::Kind kind) const;

    /// The one text that is drawn with these words; fails the program when there is none.
    [[nodiscard]] const Drawn& text(std::string_view words) const;

    std::string name;  ///< "drawn" when it was
    double scale = 1;
    std::vector<Drawn> operations;
    Shadow shadow;  ///< of `withShadow`

private:
    Size size_;
};

/// Fixed metrics: every character is 0.6 of the font's size wide, a line 1.2 of it high.
/// An image "decodes" from the text "image WIDTHxHEIGHT NAME".
class VirtualGraphics final : public Graphics {
public:
    Size measure(std::string_view text, const Font& font) const override;
    ImagePtr draw(const Size& size, double scale, const std::function<void(Canvas&)>& paint) const override;
    ImagePtr withShadow(const ImagePtr& image, const Shadow& shadow) const override;
    ImagePtr image(std::string_view name) const override;
    ImagePtr fitted(const ImagePtr& image, const Size& box) const override;
    ImagePtr symbol(std::string_view name, double fontSize, const Color& color) const override;
    std::expected<ImagePtr, std::string> decode(std::string_view bytes) const override;
    std::string png(const Image& image) const override;

    std::set<std::string, std::less<>> images{"AppIcon", "coingecko"};  ///< the shipped ones
    std::set<std::string, std::less<>> missingSymbols;
    mutable std::atomic<int> drawings = 0;  ///< calls of `draw`
};

/// What was drawn as a `VirtualImage`.
[[nodiscard]] inline const VirtualImage& drawn(const ImagePtr& image) {
    return dynamic_cast<const VirtualImage&>(*image);
}

}  // namespace glintar::platform
