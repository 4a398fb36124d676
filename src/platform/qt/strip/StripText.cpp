#include "platform/qt/strip/StripText.h"

#include "platform/qt/strip/StripLook.h"

#include <utility>

namespace glintar::platform {

namespace {

constexpr double kPlateHeight = 22;
constexpr double kPlateMargin = 8;
constexpr double kPlateRadius = 4;

/// Texts that follow one another share a plate.
struct Texts {
    std::vector<const TextRun*> runs;
    std::vector<Size> sizes;
    double width = 0;
    std::string text;
};

void drawPlate(Canvas& canvas, double width, Appearance appearance) {
    const bool isDark = appearance == Appearance::Dark;
    const Rect rect{0.5, 0.5, width - 1, kPlateHeight - 1};
    canvas.fillRounded(rect, kPlateRadius, Color::white(isDark ? 0.15 : 0.9));
    canvas.strokeRounded(rect, kPlateRadius, Color::white(isDark ? 0.3 : 0.6), 1);
}

TitlePart plateOf(const Texts& texts, const Graphics& graphics, double scale, Appearance appearance) {
    const Size size{texts.width + 2 * kPlateMargin, kPlateHeight};
    auto picture = graphics.draw(size, scale, [&](Canvas& canvas) {
        drawPlate(canvas, size.width, appearance);
        double x = kPlateMargin;
        for (std::size_t index = 0; index < texts.runs.size(); ++index) {
            const TextRun& run = *texts.runs[index];
            canvas.drawText(run.text, {x, (size.height - texts.sizes[index].height) / 2}, run.font, run.color);
            x += texts.sizes[index].width;
        }
    });
    return {.picture = std::move(picture),
            .width = size.width,
            .bottom = (StripLook::kHeight - kPlateHeight) / 2,
            .description = texts.text};
}

}  // namespace

std::vector<TitlePart> titleParts(const AttributedText& title, const Graphics& graphics, double scale,
                                  Appearance appearance) {
    std::vector<TitlePart> parts;
    Texts texts;
    const auto finishTexts = [&] {
        if (!texts.runs.empty()) {
            parts.push_back(plateOf(std::exchange(texts, {}), graphics, scale, appearance));
        }
    };
    for (const auto& run : title) {
        if (const auto* text = std::get_if<TextRun>(&run)) {
            const Size size = graphics.measure(text->text, text->font);
            if (text->text.find_first_not_of(' ') == std::string::npos) {
                finishTexts();
                parts.push_back({.width = size.width});
                continue;
            }
            texts.runs.push_back(text);
            texts.sizes.push_back(size);
            texts.width += texts.sizes.back().width;
            texts.text += text->text;
        } else if (const auto& picture = std::get<PictureRun>(run); picture.image) {
            finishTexts();
            parts.push_back({.picture = picture.image,
                             .width = picture.image->size().width,
                             .bottom = StripLook::kBase + picture.offset.y,
                             .description = picture.description});
        }
    }
    finishTexts();
    return parts;
}

}  // namespace glintar::platform
