#pragma once

#include "platform/Graphics.h"
#include "platform/qt/graphics/QtFonts.h"

#include <map>
#include <memory>
#include <mutex>

namespace glintar::platform {

class Artwork;
class Bundle;

/// Pictures made by Qt's software painter. Made on the main thread once there is a `QGuiApplication`, and gone before
/// it; then every call may come from any thread at once. A thread's first text costs it 0.7 ms and 0.3 MB of fonts.
///
/// Shipped pictures are `resources/images/NAME.svg` and `resources/symbols/NAME.svg`. A name may come from a downloaded
/// document, so only letters, digits, '_', '-' and '.' are looked for, and no '.' at the start.
class QtGraphics final : public Graphics {
public:
    explicit QtGraphics(const Bundle& bundle);
    QtGraphics(const QtGraphics&) = delete;
    QtGraphics& operator=(const QtGraphics&) = delete;
    ~QtGraphics() override;

    /// The desktop's font, which Qt may not know by itself. Counts for what is measured and drawn from now on.
    void setFontFamily(std::string_view family);

    Size measure(std::string_view text, const Font& font) const override;
    ImagePtr draw(const Size& size, double scale, const std::function<void(Canvas&)>& paint) const override;
    ImagePtr withShadow(const ImagePtr& image, const Shadow& shadow) const override;
    ImagePtr image(std::string_view name) const override;

    ImagePtr fitted(const ImagePtr& image, const Size& box) const override;

    /// As high as 1.2 em, to the nearest whole point, so that it can lie on whole pixels. What is no square is as wide
    /// as that makes it.
    ImagePtr symbol(std::string_view name, double fontSize, const Color& color) const override;

    std::expected<ImagePtr, std::string> decode(std::string_view bytes) const override;
    std::string png(const Image& image) const override;

private:
    std::shared_ptr<Artwork> artwork(std::string_view folder, std::string_view name) const;

    const Bundle& bundle_;
    QtFonts fonts_;
    mutable std::mutex mutex_;
    mutable std::map<std::string, std::shared_ptr<Artwork>, std::less<>> artworks_;  // null where there is none
};

}  // namespace glintar::platform
