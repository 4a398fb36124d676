#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/graphics/QtImage.h"
#include "support/FolderBundle.h"
#include "support/TemporaryFolder.h"

#include <QGuiApplication>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <malloc.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <thread>

#ifdef __SANITIZE_ADDRESS__
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // GCC ships no header for it
#endif

namespace glintar::platform {
namespace {

constexpr Color kRed{1, 0, 0, 1};
constexpr Color kBlack{0, 0, 0, 1};

class DrawingTest : public testing::Test {
protected:
    /// Ships some pictures of its own.
    DrawingTest() {
        for (const char* name : {"images/inner", "symbols"}) {
            std::filesystem::create_directories(folder.path() / name);
        }
        // The left half is black.
        const std::string half = R"(<svg xmlns="http://www.w3.org/2000/svg" width="64" height="64">)"
                                 R"(<path d="M0 0h32v64H0z"/></svg>)";
        for (const char* name : {"images/half", "images/.hidden", "images/inner/half", "secret", "symbols/half"}) {
            std::ofstream(folder.path() / fmt::format("{}.svg", name)) << half;
        }
        std::ofstream(folder.path() / "images/broken.svg") << half.substr(0, 40);
        std::ofstream(folder.path() / "images/text.svg") << "no drawing";
    }
    QImage drawn(Size size, double scale, const std::function<void(Canvas&)>& paint) const {
        return pixelsAt(*graphics.draw(size, scale, paint), size, scale);
    }
    /// What is not transparent; empty when nothing is.
    static QRect ink(const QImage& image) {
        QRect found;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y).alpha() > 127) {
                    found |= QRect(x, y, 1, 1);
                }
            }
        }
        return found;
    }

    test::TemporaryFolder folder;
    test::FolderBundle bundle{folder.path()};
    QtGraphics graphics{bundle};
};

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

std::size_t heapInUse() {
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    return ::mallinfo2().uordblks;
#endif
}

TEST_F(DrawingTest, TheFontThatIsSetAgainIsNotLoadedAgain) {
    const auto change = [&](int times) {
        for (int i = 0; i < times; ++i) {
            graphics.setFontFamily(i % 2 == 0 ? "Cantarell" : "Noto Sans");
            static_cast<void>(graphics.measure("64012.55", {.size = 12}));
        }
        return heapInUse();
    };
    const auto before = change(10);
    EXPECT_LT(change(100), before + 100'000) << "bytes, after a hundred changes of appearance";
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

class FamilyTest : public DrawingTest, public testing::WithParamInterface<const char*> {
protected:
    FamilyTest() { graphics.setFontFamily(GetParam()); }
};

TEST_P(FamilyTest, TextStandsAtTheSameHeightInEveryFont) {
    const Font font{20, Font::Weight::Bold};
    EXPECT_DOUBLE_EQ(graphics.measure("H", font).height, 1.193 * 20);
    const QImage image = drawn({30, 40}, 2, [&](Canvas& canvas) { canvas.drawText("H", {5, 6}, font, kBlack); });
    EXPECT_NEAR(80 - ink(image).bottom() - 1, 2 * (6 + 0.241 * 20), 1.01);
}

TEST_P(FamilyTest, DigitsAreEquallyWideAndDrawnWhereTheyWereMeasured) {
    for (const double size : {9.0, 12.0, 13.5, 14.0}) {
        const Font font{size, Font::Weight::Bold};
        const Size ones = graphics.measure("-1111.11", font);
        EXPECT_DOUBLE_EQ(ones.width, graphics.measure("-8888.88", font).width) << size;

        // So the last digit does not move when those before it change.
        const auto lastDigit = [&](std::string_view text) {
            const QImage image = drawn(ones, 1, [&](Canvas& canvas) { canvas.drawText(text, {0, 0}, font, kBlack); });
            const int cell = static_cast<int>(graphics.measure("8", font).width);
            return image.copy(image.width() - cell, 0, cell, image.height());
        };
        EXPECT_EQ(lastDigit("-1111.18"), lastDigit("-8888.88")) << size;
        EXPECT_FALSE(ink(lastDigit("-1111.18")).isEmpty());
    }
}

TEST_P(FamilyTest, DigitsStandInTheMiddleOfTheirCells) {
    const Font cells{30};
    const Font plain{30, Font::Weight::Regular, Font::Digits::AsDesigned};
    const auto left = [&](const Font& font) {
        return ink(drawn({60, 40}, 2, [&](Canvas& canvas) { canvas.drawText("1", {5, 5}, font, kBlack); })).left();
    };
    const double wider = graphics.measure("1", cells).width - graphics.measure("1", plain).width;
    EXPECT_NEAR(left(cells) - left(plain), 2 * wider / 2, 1);
}

// Two fonts that are found on every desktop, and one whose digits differ in width.
INSTANTIATE_TEST_SUITE_P(Families, FamilyTest, testing::Values("DejaVu Sans", "Noto Sans", "Cantarell"));

TEST_F(DrawingTest, CellsAreOnlyForDigitsInTextThatRunsToTheRight) {
    graphics.setFontFamily("Cantarell");
    const Font cells{14};
    const Font plain{14, Font::Weight::Regular, Font::Digits::AsDesigned};
    const auto width = [&](std::string_view text, const Font& font) { return graphics.measure(text, font).width; };
    EXPECT_GT(width("11", cells), width("11", plain) + 1) << "the font was chosen for this";
    EXPECT_DOUBLE_EQ(width("مرحبا 11", cells), width("مرحبا 11", plain));
    EXPECT_DOUBLE_EQ(width("1\u20e3", cells), width("1\u20e3", plain));
}

TEST_F(DrawingTest, MonospacedTextHasCharactersOfOneWidth) {
    const Font font{12, Font::Weight::Black, Font::Digits::Monospaced};
    EXPECT_DOUBLE_EQ(graphics.measure("ilI1.", font).width, graphics.measure("MW8%B", font).width);
}

TEST_F(DrawingTest, OddTextIsStillOneLine) {
    const Font font{14};
    for (const std::string_view text : {"a\nb", "a\tb", "a\rb", "a\u2028b",
                                        "a\x7f"
                                        "b"}) {
        EXPECT_DOUBLE_EQ(graphics.measure(text, font).width, graphics.measure("a b", font).width) << text;
    }
    EXPECT_EQ(graphics.measure("", font).width, 0);
    EXPECT_GT(graphics.measure("\xff\xc3(", font).width, 0);
    EXPECT_LT(graphics.measure(std::string(1'000'000, 'x'), font).width, 40'000);
}

}  // namespace
}  // namespace glintar::platform

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
