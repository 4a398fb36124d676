#pragma once

#include "platform/Graphics.h"

#include <algorithm>
#include <vector>

namespace glintar::test {

/// Draws as another one does, but for one thing that went wrong.
class ChangedGraphics final : public platform::Graphics {
public:
    enum class Fault { TextRight, TextUp, Color, NoSparkline };

    /// The `which`th text, colour or sparkline, in the order in which they are first drawn. A text moves by one pixel;
    /// a colour moves by a tenth of its range wherever it is used, a faint one in its opacity.
    ChangedGraphics(const Graphics& real, Fault fault, std::size_t which, double scale)
        : real_(real), fault_(fault), which_(which), pixel_(1 / scale) {}

    /// Whether there was such a thing in what was drawn.
    [[nodiscard]] bool hasHappened() const { return hasHappened_; }

    platform::Size measure(std::string_view text, const platform::Font& font) const override {
        return real_.measure(text, font);
    }
    platform::ImagePtr draw(const platform::Size& size, double scale,
                            const std::function<void(platform::Canvas&)>& paint) const override {
        return real_.draw(size, scale, [&](platform::Canvas& canvas) {
            ChangedCanvas changed(*this, canvas);
            paint(changed);
        });
    }
    platform::ImagePtr withShadow(const platform::ImagePtr& image, const platform::Shadow& shadow) const override {
        return real_.withShadow(image, shadow);
    }
    platform::ImagePtr image(std::string_view name) const override { return real_.image(name); }
    platform::ImagePtr fitted(const platform::ImagePtr& image, const platform::Size& box) const override {
        return real_.fitted(image, box);
    }
    platform::ImagePtr symbol(std::string_view name, double fontSize, const platform::Color& color) const override {
        return real_.symbol(name, fontSize, changed(color));
    }
    std::expected<platform::ImagePtr, std::string> decode(std::string_view bytes) const override {
        return real_.decode(bytes);
    }
    std::string png(const platform::Image& image) const override { return real_.png(image); }

private:
    class ChangedCanvas final : public platform::Canvas {
    public:
        ChangedCanvas(const ChangedGraphics& owner, Canvas& real) : owner_(owner), real_(real) {}
        void fillRounded(const platform::Rect& rect, double radius, const platform::Color& color) override {
            real_.fillRounded(rect, radius, owner_.changed(color));
        }
        void strokeRounded(const platform::Rect& rect, double radius, const platform::Color& color,
                           double width) override {
            real_.strokeRounded(rect, radius, owner_.changed(color), width);
        }
        void drawText(std::string_view text, const platform::Point& origin, const platform::Font& font,
                      const platform::Color& color) override {
            platform::Point moved = origin;
            if (owner_.happens(owner_.fault_ == Fault::TextRight)) {
                moved.x += owner_.pixel_;
            } else if (owner_.happens(owner_.fault_ == Fault::TextUp)) {
                moved.y += owner_.pixel_;
            }
            real_.drawText(text, moved, font, owner_.changed(color));
        }
        void drawImage(const platform::Image& image, const platform::Rect& rect, double opacity) override {
            real_.drawImage(image, rect, opacity);
        }
        void drawImageInPie(const platform::Image& image, const platform::Rect& rect, const Arc& pie) override {
            real_.drawImageInPie(image, rect, pie);
        }
        void strokeLine(std::span<const platform::Point> points, const platform::Color& color, double width) override {
            if (!owner_.happens(owner_.fault_ == Fault::NoSparkline)) {
                real_.strokeLine(points, owner_.changed(color), width);
            }
        }
        void strokeArc(const Arc& arc, const platform::Color& color, double width, Caps caps) override {
            real_.strokeArc(arc, owner_.changed(color), width, caps);
        }

    private:
        const ChangedGraphics& owner_;
        Canvas& real_;
    };

    bool happens(bool isItsKind) const {
        const bool now = isItsKind && seen_++ == which_;
        hasHappened_ = hasHappened_ || now;
        return now;
    }

    platform::Color changed(const platform::Color& color) const {
        if (fault_ != Fault::Color) {
            return color;
        }
        const auto known = std::ranges::find(colors_, color);
        const auto index = static_cast<std::size_t>(known - colors_.begin());
        if (known == colors_.end()) {
            colors_.push_back(color);
        }
        if (index != which_) {
            return color;
        }
        hasHappened_ = true;
        static constexpr auto moved = [](double level) { return level > 0.5 ? level - 0.1 : level + 0.1; };
        if (color.alpha < 0.5) {
            return color.withAlpha(moved(color.alpha));
        }
        return {moved(color.red), moved(color.green), moved(color.blue), color.alpha};
    }

    const Graphics& real_;
    Fault fault_;
    std::size_t which_;
    double pixel_;
    mutable std::size_t seen_ = 0;
    mutable std::vector<platform::Color> colors_;
    mutable bool hasHappened_ = false;
};

}  // namespace glintar::test
