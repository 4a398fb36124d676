#include "presenter/LineText.h"
#include "presenter/Sparkline.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <limits>

namespace glintar::presenter {

TEST(SparklineTest, ItStaysInsideItsFrameWhateverTheValues) {
    constexpr double kMost = std::numeric_limits<double>::max();
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    struct Case {
        std::vector<double> values;
        const char *points, *text;
    };
    for (const auto& [values, points, text] : {
             Case{{1, 3, 2}, "100,4 118,18 136,11 ", "▁█▅"},
             Case{{1, 2, 3, 4, 5, 6, 7, 8},
                  "100,4 105.143,6 110.286,8 115.429,10 120.571,12 125.714,14 130.857,16 136,18 ",
                  "▁▂▃▄▅▆▇█"},
             Case{{5, 5}, "100,4 136,4 ", "▁▁"},  // flat, at the bottom
             Case{{1, 1 + 1e-15}, "100,4 136,18 ", "▁█"},
             Case{{-kMost, kMost}, "100,4 136,18 ", "▁█"},
             Case{{kNone, 1, kInfinite, 2, -kInfinite}, "100,4 136,18 ", "▁█"},
             Case{{1, 3, kNone}, "100,4 136,18 ", "▁█"},
             Case{{kNone, 1}, "", ""},
             Case{{1}, "", ""},
             Case{{}, "", ""},
         }) {
        std::string line;
        for (const auto& [x, y] : sparklinePoints(values, {100, 4, 36, 14})) {
            line += fmt::format("{:.6g},{:.6g} ", x, y);
        }
        EXPECT_EQ(line, points);
        EXPECT_EQ(sparklineText(values), text) << points;
    }
    EXPECT_NEAR(sparklineHeights(std::vector{1, 1.00001}, 0.0001).at(1), 0.1, 1e-9) << "hardly any range";
}

}  // namespace glintar::presenter
