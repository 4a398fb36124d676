#include "platform/qt/graphics/DrawingFixture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <thread>

namespace glintar::platform {
namespace {

TEST_F(DrawingTest, YGrowsUpwards) {
    const QImage image = drawn({10, 20}, 2, [](Canvas& canvas) { canvas.fillRounded({2, 1, 5, 4}, 0, kRed); });
    EXPECT_EQ(ink(image), QRect(4, 30, 10, 8));
}

struct Slice {
    std::string name;
    double start;
    double sweep;
    std::string quadrants;  // that are seen, counter-clockwise from the top right
};

class SliceTest : public DrawingTest, public testing::WithParamInterface<Slice> {};

TEST_P(SliceTest, GoesTheRightWayRound) {
    const Canvas::Arc arc{{20, 20}, 15, GetParam().start, GetParam().sweep};
    const Canvas::Arc pie{{20, 20}, 20, GetParam().start, GetParam().sweep};
    const auto quadrants = [](const QImage& image) {
        std::string seen;
        for (const auto& [digit, x, y] : {std::tuple('1', 30, 9), {'2', 9, 9}, {'3', 9, 30}, {'4', 30, 30}}) {
            if (image.pixelColor(x, y).alpha() > 200) {
                seen += digit;
            }
        }
        return seen;
    };
    const auto picture = graphics.draw({8, 8}, 1, [](Canvas& canvas) { canvas.fillRounded({0, 0, 8, 8}, 0, kRed); });
    EXPECT_EQ(
        quadrants(drawn({40, 40}, 1, [&](Canvas& canvas) { canvas.drawImageInPie(*picture, {0, 0, 40, 40}, pie); })),
        GetParam().quadrants);
    EXPECT_EQ(
        quadrants(drawn({40, 40}, 1, [&](Canvas& canvas) { canvas.strokeArc(arc, kRed, 4, Canvas::Caps::Butt); })),
        GetParam().quadrants);
}

INSTANTIATE_TEST_SUITE_P(Slices, SliceTest,
                         testing::Values(Slice{"Clockwise", 90, -90, "1"}, Slice{"CounterClockwise", 90, 180, "23"},
                                         Slice{"FromTheRight", 0, 90, "1"}, Slice{"Whole", 90, -360, "1234"},
                                         Slice{"Nothing", 90, 0, ""}),
                         [](const auto& row) { return row.param.name; });

TEST_F(DrawingTest, LinesLeaveOutPointsThatAreNowhere) {
    const double nowhere = std::numeric_limits<double>::quiet_NaN();
    const double far = std::numeric_limits<double>::infinity();
    const std::vector<Point> points{{nowhere, 5}, {5, 5}, {10, far}, {15, 5}};
    const auto line = [&](std::span<const Point> some) {
        return ink(drawn({20, 10}, 1, [&](Canvas& canvas) { canvas.strokeLine(some, kRed, 2); }));
    };
    EXPECT_EQ(line(points), QRect(4, 4, 12, 2)) << "with round ends";
    EXPECT_TRUE(line(std::span(points).first(2)).isEmpty());
}

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

TEST_F(DrawingTest, SymbolsHaveTheColourAskedForAndSuitTheTextBesideThem) {
    const auto symbol = graphics.symbol("half", 13, {0, 0.5, 1, 1});
    ASSERT_TRUE(symbol);
    EXPECT_EQ(symbol->size(), (Size{16, 16}));
    EXPECT_EQ(pixelsAt(*symbol, {16, 16}, 1).pixelColor(4, 8), QColor(0, 128, 255));
    EXPECT_EQ(pixelsAt(*symbol, {16, 16}, 1).pixelColor(12, 8).alpha(), 0);
    EXPECT_EQ(pixelsAt(*graphics.symbol("half", 13, kRed), {16, 16}, 1).pixelColor(4, 8), QColor(Qt::red));
    EXPECT_EQ(graphics.symbol("nothing", 13, kRed), nullptr);
}

TEST_F(DrawingTest, NamesFromDocumentsNeverLeaveTheFolder) {
    ASSERT_TRUE(graphics.image("half"));
    for (const char* name :
         {"", ".hidden", "../secret", "inner/half", "/etc/passwd", "broken", "text", "half.svg", "half\n", "missing"}) {
        EXPECT_EQ(graphics.image(name), nullptr) << name;
    }
}

TEST_F(DrawingTest, ShadowsLieUnderThePictureAndFadeOut) {
    const auto square =
        graphics.draw({60, 60}, 2, [](Canvas& canvas) { canvas.fillRounded({20, 20, 20, 20}, 0, kRed); });
    const QImage image = pixelsAt(*graphics.withShadow(square, {{0, 0, 1, 0.5}, 4, {0, -2}}), {60, 60}, 2);
    EXPECT_EQ(image.pixelColor(60, 60), QColor(Qt::red));
    const auto below = [&](int pixels) { return image.pixelColor(60, 79 + pixels); };
    const auto above = [&](int pixels) { return image.pixelColor(60, 40 - pixels); };
    EXPECT_GT(below(2).alpha(), 60);
    EXPECT_LT(below(2).alpha(), 128);
    EXPECT_GT(below(2).alpha(), below(8).alpha());
    EXPECT_GT(below(8).alpha(), above(8).alpha() + 10) << "it is moved down";
    EXPECT_EQ(below(2).blue(), 255);
    EXPECT_EQ(below(2).red(), 0);
    EXPECT_GT(below(18).alpha(), 0);
    EXPECT_EQ(below(21).alpha(), 0) << "2 x 4 points, and 2 of offset";
    EXPECT_EQ(above(13).alpha(), 0);
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
