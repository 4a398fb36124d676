#include "platform/qt/graphics/DrawingFixture.h"

namespace glintar::platform {
namespace {

using TextTest = DrawingTest;

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
INSTANTIATE_TEST_SUITE_P(Families, FamilyTest, testing::Values("DejaVu Sans", "Noto Sans", "Cantarell"),
                         [](const auto& row) {
                             std::string name = row.param;
                             std::erase(name, ' ');
                             return name;
                         });

TEST_F(TextTest, CellsAreOnlyForDigitsInTextThatRunsToTheRight) {
    graphics.setFontFamily("Cantarell");
    const Font cells{14};
    const Font plain{14, Font::Weight::Regular, Font::Digits::AsDesigned};
    const auto width = [&](std::string_view text, const Font& font) { return graphics.measure(text, font).width; };
    EXPECT_GT(width("11", cells), width("11", plain) + 1) << "the font was chosen for this";
    EXPECT_DOUBLE_EQ(width("مرحبا 11", cells), width("مرحبا 11", plain));
    EXPECT_DOUBLE_EQ(width("1\u20e3", cells), width("1\u20e3", plain));
}

TEST_F(TextTest, MonospacedTextHasCharactersOfOneWidth) {
    const Font font{12, Font::Weight::Black, Font::Digits::Monospaced};
    EXPECT_DOUBLE_EQ(graphics.measure("ilI1.", font).width, graphics.measure("MW8%B", font).width);
}

TEST_F(TextTest, OddTextIsStillOneLine) {
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
