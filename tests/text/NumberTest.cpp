#include "support/CommaLocale.h"
#include "text/Number.h"

#include <gtest/gtest.h>

namespace glintar::text {
namespace {

TEST(NumberTest, ReadsWholeDecimalsOnly) {
    const test::CommaLocale german;
    struct Case {
        std::string text;
        std::optional<double> value;
    };
    const std::string zeros(400, '0');
    for (const auto& [text, value] : {
             Case{"+0.0811", 0.0811},
             {"-0.0811", -0.0811},
             {"7.5E+4", 75000},
             {"7.5e-4", 0.00075},
             {".5", 0.5},
             {"5.", 5},
             {"007", 7},
             {"0.1000000000000000055511151231257827021181583404541015625", 0.1},
             {"184467440737095516155", 184467440737095516155.0},
             {"1e-400", 0},
             {"0." + zeros + "1", 0},
             {"0." + zeros + "1e100", 1e-301},
             {"1" + zeros + "e-300", 1e100},
             {"1e-99999999999999999999", 0},
             {"0e99999999999999999999", 0},
             {"1e400", std::nullopt},
             {"-1e400", std::nullopt},
             {"1" + zeros, std::nullopt},
             {"1" + zeros + "e-1", std::nullopt},
             {"0.0001e99999999999999999999", std::nullopt},
             {"", std::nullopt},
             {"+", std::nullopt},
             {".", std::nullopt},
             {"--1", std::nullopt},
             {"+-1", std::nullopt},
             {" 1", std::nullopt},
             {"1 ", std::nullopt},
             {"1,5", std::nullopt},
             {"1e", std::nullopt},
             {"1.5.2", std::nullopt},
             {"inf", std::nullopt},
             {"-inf", std::nullopt},
             {"nan", std::nullopt},
             {"+nan", std::nullopt},
             {"0x1p3", std::nullopt},
             {"0xa83efbe0", std::nullopt},
         }) {
        EXPECT_EQ(parseDecimal(text), value) << text;
    }
}

TEST(NumberTest, WritesFixedDecimalsWhateverTheLocale) {
    const test::CommaLocale german;
    struct Case {
        double value;
        int decimals;
        const char* text;
    };
    for (const auto& [value, decimals, text] : {
             Case{1234567.891, 2, "1234567.89"},
             {0.125, 2, "0.12"},
             {-0.001, 2, "-0.00"},
             {1e21, 0, "1000000000000000000000"},
         }) {
        EXPECT_EQ(fixed(value, decimals), text);
    }
}

}  // namespace
}  // namespace glintar::text
