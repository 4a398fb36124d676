#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <clocale>

namespace glintar::test {

/// While it lives, `printf` and `strtod` write one and a half as "1,5", by a locale that the build makes
/// (CMakeLists.txt). C++'s own locale is nobody's: the program never sets it.
class CommaLocale {
public:
    CommaLocale() {
        ::setenv("LOCPATH", GLINTAR_LOCALES, 1);
        EXPECT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8"));
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() { std::setlocale(LC_ALL, "C"); }
};

}  // namespace glintar::test
