#pragma once

#include "platform/Geometry.h"

#include <cstddef>
#include <expected>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace glintar::platform {

enum class Appearance { Light, Dark };

/// sRGB components from 0 to 1.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const Color&) const = default;

    [[nodiscard]] static constexpr Color white(double level, double alpha = 1) { return {level, level, level, alpha}; }
    [[nodiscard]] constexpr Color withAlpha(double opacity) const { return {red, green, blue, opacity}; }
};

/// The desktop's font in one size.
struct Font {
    enum class Weight { Regular = 400, Medium = 500, Semibold = 600, Bold = 700, Black = 900 };  ///< as in OpenType
    enum class Digits { AsDesigned, EqualWidth, Monospaced };  ///< the last: all characters are equally wide
    double size = 12;                                          ///< points of an em
    Weight weight = Weight::Regular;
    Digits digits = Digits::EqualWidth;
    bool operator==(const Font&) const = default;
};

/// The line box of a text, in its font's size: its height, and how far its base line lies above its bottom. The same
/// for every font, since what is drawn stands at fixed heights in a row of 24 points. The boxes of the fonts themselves
/// range from 1.16 to 1.36 of the size, and would move the same text by up to two points.
inline constexpr double kLineHeight = 1.193;
inline constexpr double kDescent = 0.241;

/// A picture. Immutable, so it may be shared between threads.
class Image {
public:
    virtual ~Image() = default;
    [[nodiscard]] virtual Size size() const = 0;              ///< in points
    [[nodiscard]] virtual std::size_t byteCount() const = 0;  ///< of memory that it holds
};
using ImagePtr = std::shared_ptr<const Image>;

/// What a picture is drawn on, from back to front.
class Canvas {
public:
    enum class Caps { Butt, Round };
    /// Angles in degrees, counter-clockwise, 0 to the right; a negative `sweep` goes clockwise.
    struct Arc {
        Point center;
        double radius = 0;
        double start = 0;
        double sweep = 360;
        bool operator==(const Arc&) const = default;
    };

    virtual ~Canvas() = default;
    virtual void fillRounded(const Rect& rect, double radius, const Color& color) = 0;
    virtual void strokeRounded(const Rect& rect, double radius, const Color& color, double width) = 0;

    /// One line of text; `origin` is the bottom left corner of its line box, whose size `Graphics::measure` gives.
    virtual void drawText(std::string_view text, const Point& origin, const Font& font, const Color& color) = 0;

    /// The whole image, stretched to the rectangle.
    virtual void drawImage(const Image& image, const Rect& rect, double opacity) = 0;

    /// The part of it that lies in the slice of pie which the arc cuts.
    virtual void drawImageInPie(const Image& image, const Rect& rect, const Arc& pie) = 0;

    /// Open line through the points, with round joins and caps; nothing for fewer than two.
    virtual void strokeLine(std::span<const Point> points, const Color& color, double width) = 0;
    virtual void strokeArc(const Arc& arc, const Color& color, double width, Caps caps) = 0;
};

/// A blurred shadow of what has been drawn, in points. It has faded out at twice its radius.
struct Shadow {
    Color color;
    double radius = 0;
    Point offset;
};

/// Makes and measures pictures. Every call may come from any thread.
class Graphics {
public:
    virtual ~Graphics() = default;

    /// The line box of one line of text.
    [[nodiscard]] virtual Size measure(std::string_view text, const Font& font) const = 0;

    /// A picture of that size, drawn with `scale` pixels to a point.
    [[nodiscard]] virtual ImagePtr draw(const Size& size, double scale,
                                        const std::function<void(Canvas&)>& paint) const = 0;

    /// The picture with its shadow. The picture must have room for it.
    [[nodiscard]] virtual ImagePtr withShadow(const ImagePtr& image, const Shadow& shadow) const = 0;

    /// A shipped image, such as that of a source; sharp at any size. Null when there is none of that name.
    [[nodiscard]] virtual ImagePtr image(std::string_view name) const = 0;

    /// The image as large as fits into the box, with its proportions; as sharp as it was.
    [[nodiscard]] virtual ImagePtr fitted(const ImagePtr& image, const Size& box) const = 0;

    /// A shipped symbol in one colour, as high as text of that font size looks beside it. Null when there is none.
    [[nodiscard]] virtual ImagePtr symbol(std::string_view name, double fontSize, const Color& color) const = 0;

    /// Reads an untrusted PNG, JPEG, GIF (its first picture), BMP, ICO or WebP. A picture larger than any icon that is
    /// shown is made smaller. The error is a short English text.
    [[nodiscard]] virtual std::expected<ImagePtr, std::string> decode(std::string_view bytes) const = 0;

    /// The image as a PNG file.
    [[nodiscard]] virtual std::string png(const Image& image) const = 0;
};

}  // namespace glintar::platform
