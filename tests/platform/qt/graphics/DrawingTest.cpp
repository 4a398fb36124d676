#include "platform/qt/graphics/DrawingFixture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <thread>

namespace glintar::platform {
namespace {

class RatioTest : public DrawingTest, public testing::WithParamInterface<double> {};

TEST_P(RatioTest, ShippedImagesAreSharp) {
    const double ratio = GetParam();
    const auto image = graphics.image("half");
    ASSERT_TRUE(image);
    for (const double left : {3.0, 3.4, 3.6}) {
        const QImage pixels =
            drawn({25, 22}, ratio, [&](Canvas& canvas) { canvas.drawImage(*image, {left, 1, 20, 20}, 1); });
        EXPECT_EQ(pixels.size(),
                  QSize(static_cast<int>(std::ceil(25 * ratio)), static_cast<int>(std::ceil(22 * ratio))));
        int blurred = 0;
        double covered = 0;
        double middle = 0;
        for (int x = 0; x < pixels.width(); ++x) {
            const int alpha = pixels.pixelColor(x, pixels.height() / 2).alpha();
            blurred += alpha != 0 && alpha != 255 ? 1 : 0;
            covered += alpha / 255.0;
            middle += (x + 0.5) * alpha / 255.0;
        }
        EXPECT_LE(blurred, 2) << "one at each edge, where it falls between pixels";
        EXPECT_NEAR(covered, 10 * ratio, 0.05);
        EXPECT_NEAR(middle / covered, (left + 5) * ratio, 0.05);
    }
    EXPECT_EQ(pixelsAt(*image, {18, 18}, ratio).devicePixelRatio(), ratio);
}

TEST_P(RatioTest, PicturesOfTheSameRatioAreCopiedPixelForPixel) {
    const auto picture =
        graphics.draw({30.3, 12}, GetParam(), [](Canvas& canvas) { canvas.drawText("Wij", {1, 0}, {10}, kBlack); });
    const QImage copy =
        drawn({30.3, 12}, GetParam(), [&](Canvas& canvas) { canvas.drawImage(*picture, {0, 0, 30.3, 12}, 1); });
    EXPECT_EQ(copy, pixelsAt(*picture, picture->size(), GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Ratios, RatioTest, testing::Values(1, 1.25, 1.5, 2, 3));

TEST_F(DrawingTest, PicturesOfAnyScaleFillTheirRectangle) {
    const auto fine = graphics.draw({40, 40}, 3, [](Canvas& canvas) { canvas.fillRounded({0, 0, 40, 40}, 0, kRed); });
    const QImage image = drawn({20, 20}, 1, [&](Canvas& canvas) { canvas.drawImage(*fine, {5, 2, 10, 8}, 0.5); });
    EXPECT_NEAR(image.pixelColor(5, 10).alpha(), 128, 2);
    EXPECT_NEAR(image.pixelColor(14, 17).alpha(), 128, 2);
    EXPECT_EQ(image.pixelColor(15, 14).alpha(), 0);
    EXPECT_EQ(image.pixelColor(10, 9).alpha(), 0);
}

TEST_F(DrawingTest, NamesFromDocumentsNeverLeaveTheFolder) {
    ASSERT_TRUE(graphics.image("half"));
    for (const char* name :
         {"", ".hidden", "../secret", "inner/half", "/etc/passwd", "broken", "text", "half.svg", "half\n", "missing"}) {
        EXPECT_EQ(graphics.image(name), nullptr) << name;
    }
}

TEST_F(DrawingTest, SeveralThreadsAtOnceDrawWhatTheMainThreadDraws) {
    graphics.setFontFamily("Cantarell");
    const auto icon = graphics.image("half");
    const auto pill = [&](int number) {
        const std::string text = fmt::format("{:.2f} 🚀", 1234.5 * number);
        const Font font{12.0 + number % 3, Font::Weight::Bold};
        return graphics.png(*graphics.draw({120, 24}, 1 + number % 2, [&](Canvas& canvas) {
            canvas.fillRounded({0.5, 0, 119, 22}, 4, Color::white(0.9));
            canvas.drawImage(*icon, {6.0 + number, 2, 18, 18}, 1);
            canvas.drawImage(*graphics.symbol("half", 13, Color::white(number / 16.0)), {100, 2, 16, 16}, 1);
            canvas.drawText(text, {30, 2}, font, kBlack);
        }));
    };
    std::array<std::vector<std::string>, 4> results;
    {
        std::vector<std::jthread> threads;
        for (auto& result : results) {
            threads.emplace_back([&] {
                for (int number = 0; number < 16; ++number) {
                    result.push_back(pill(number));
                }
            });
        }
        for (int number = 0; number < 16; ++number) {
            (void)pill(number);
        }
    }
    for (int number = 0; number < 16; ++number) {
        const std::string expected = pill(number);
        for (const auto& result : results) {
            EXPECT_TRUE(result[static_cast<std::size_t>(number)] == expected) << number;
        }
    }
}

}  // namespace
}  // namespace glintar::platform
