#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <clocale>
#include <locale>
#include <string>

namespace glintar::test {

/// While it lives, the process writes one and a half as "1,5" and a million with points: the C library, which `printf`
/// and `strtod` ask, by a locale that the build makes (CMakeLists.txt), and C++ by one of its own, since the C
/// library's leaks.
class CommaLocale {
public:
    CommaLocale() {
        ::setenv("LOCPATH", GLINTAR_LOCALES, 1);
        EXPECT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8"));
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        std::locale::global(before_);
    }

private:
    struct Comma final : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale before_ = std::locale::global(std::locale(std::locale(), new Comma));
};

}  // namespace glintar::test
