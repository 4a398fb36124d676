#include "support/CommaLocale.h"
#include "text/Address.h"
#include "text/Number.h"
#include "text/Unicode.h"

#include <gtest/gtest.h>

namespace glintar::text {

using namespace std::string_literals;

TEST(UnicodeTest, MapsCaseAsUnicodeDoesInNoLanguage) {
    struct Case {
        std::string text;
        std::string upper;
        std::string lower;
    };
    for (const auto& [text, expectedUpper, expectedLower] : {
             Case{"aZ@[`{i", "AZ@[`{I", "az@[`{i"},
             {"straße", "STRASSE", "straße"},
             {"İI", "İI", "i\u0307i"},
             {"ΐΐΐΐΐ", "Ι\u0308\u0301Ι\u0308\u0301Ι\u0308\u0301Ι\u0308\u0301Ι\u0308\u0301", "ΐΐΐΐΐ"},
             {"a\xFFé\xC3", "A\uFFFDÉ\uFFFD", "a\uFFFDé\uFFFD"},
             {"a\0é"s, "A\0É"s, "a\0é"s},
             {"", "", ""},
         }) {
        EXPECT_EQ(upper(text), expectedUpper) << text;
        EXPECT_EQ(lower(text), expectedLower) << text;
    }
}

TEST(UnicodeTest, WhatServersSendCannotDriveTheTerminal) {
    EXPECT_EQ(printable("a\tb\nc\r\x1b[2J\x7f\xc2\x9b"
                        "1m\xff币"),
              "a\tb\nc\uFFFD\uFFFD[2J\uFFFD\uFFFD1m\uFFFD币");
}

TEST(UnicodeTest, FitsIntoTheColumnsOfATerminal) {
    struct Row {
        const char* text;
        std::size_t columns;
        const char* fitted;
    };
    for (const auto& [text, columns, fitted] :
         {Row{"abcd", 4, "abcd"}, Row{"abcd", 3, "ab…"}, Row{"abcd", 1, "…"}, Row{"abcd", 0, ""}, Row{"", 0, ""},
          Row{"▁▂▃▄", 3, "▁▂…"}, Row{"币安币", 6, "币安币"}, Row{"币安币", 5, "币安…"}, Row{"币安币", 4, "币…"},
          Row{"e\u0301e\u0301e", 3, "e\u0301e\u0301e"}, Row{"e\u0301e\u0301e", 2, "e\u0301…"}, Row{"⚠️ ab", 5, "⚠️ ab"},
          Row{"⚠️ ab", 4, "⚠️ …"}, Row{"⛽ 12G", 5, "⛽ 1…"}}) {
        EXPECT_EQ(fitColumns(text, columns), fitted) << text << columns;
    }
}

TEST(UnicodeTest, CountsAndCutsWhatPeopleSeeAsCharacters) {
    struct Case {
        std::string text;
        std::size_t count;
        std::string firstTwo;
    };
    for (const auto& [text, count, firstTwo] : {
             Case{"", 0, ""},
             {"a\r\nb", 3, "a\r\n"},
             {"ae\u0301x", 3, "ae\u0301"},
             {"👩‍👩‍👧🇩🇪👍🏽x", 4, "👩‍👩‍👧🇩🇪"},
             {"1️⃣ᄒ\u1161\u11ABx", 3, "1️⃣ᄒ\u1161\u11AB"},
             {"\xFF\xFFx", 3, "\xFF\xFF"},
         }) {
        EXPECT_EQ(characterCount(text), count) << text;
        EXPECT_EQ(firstCharacters(text, 2), firstTwo) << text;
    }
    EXPECT_EQ(firstCharacters("é", 0), "");
}

TEST(UnicodeTest, TrimsEveryKindOfWhiteSpace) {
    EXPECT_EQ(trimmed("\t\u00A0 \u3000a \u2028b\u0085\r\n\u2003"), "a \u2028b");
    EXPECT_EQ(trimmed(" \u00A0"), "");
    EXPECT_EQ(trimmed("\u200B\xFF "), "\u200B\xFF") << "neither is white space";
}

TEST(UnicodeTest, MakesAnyBytesFitForOneLine) {
    EXPECT_EQ(oneLine("a\r\n\u2028\x1B[31m\u009B\x7F\xFF é😀"), "a\uFFFD\uFFFD\uFFFD\uFFFD[31m\uFFFD\uFFFD\uFFFD é😀");
    EXPECT_EQ(oneLine("\u202A\u202E\u2066\u2069"), "\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(validUtf8("a\n\xE2\x82z\xED\xA0\x80"), "a\n\uFFFDz\uFFFD\uFFFD\uFFFD");
}

TEST(UnicodeTest, TellsValidUtf8) {
    EXPECT_TRUE(isValidUtf8("é😀\0"s));
    for (const std::string bad : {"\x80", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_FALSE(isValidUtf8(bad));
    }
}

TEST(NumberTest, ReadsWholeDecimalsOnly) {
    const test::CommaLocale german;
    struct Case {
        std::string text;
        std::optional<double> value;
    };
    const std::string zeros(400, '0');
    for (const auto& [text, value] : {
             Case{"+0.0811", 0.0811},
             {"7.5E+4", 75000},
             {".5", 0.5},
             {"007", 7},
             {"1e-400", 0},
             {"0." + zeros + "1e100", 1e-301},
             {"1" + zeros + "e-300", 1e100},
             {"1e400", std::nullopt},
             {"1" + zeros + "e-1", std::nullopt},
             {"0.0001e99999999999999999999", std::nullopt},
             {"", std::nullopt},
             {"+", std::nullopt},
             {".", std::nullopt},
             {"--1", std::nullopt},
             {"1 ", std::nullopt},
             {"1,5", std::nullopt},
             {"1e", std::nullopt},
             {"inf", std::nullopt},
             {"nan", std::nullopt},
             {"0x1p3", std::nullopt},
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

TEST(AddressTest, EncodesWhatCannotBeSentAndNothingElse) {
    struct Case {
        std::string text;
        std::optional<std::string> address;
    };
    using namespace std::string_literals;
    for (const auto& [text, address] : {
             Case{"https://a.example/x?ids=a,b&c=1#d", "https://a.example/x?ids=a,b&c=1#d"},
             {"http://[::1]:8080/-._~!$'()*+;=@", "http://[::1]:8080/-._~!$'()*+;=@"},
             {"https://a.example/a b|c\\d\"<>^`{}", "https://a.example/a%20b%7Cc%5Cd%22%3C%3E%5E%60%7B%7D"},
             {"https://a.example/é?x=ᚠ", "https://a.example/%C3%A9?x=%E1%9A%A0"},
             {"https://a.example/\r\nHost: b\0\x7F"s, "https://a.example/%0D%0AHost:%20b%00%7F"},
             {"https://a.example/%2F%zz%4", "https://a.example/%2F%25zz%254"},
             {"https://u:p@a.example", "https://u:p@a.example"},
             {"", std::nullopt},
             {"a.example", std::nullopt},
             {" https://a.example", std::nullopt},
             {"ftp://a.example", std::nullopt},
             {"https://", std::nullopt},
             {"https:///path", std::nullopt},
             {"https://#f", std::nullopt},
             {"https://:443/", std::nullopt},
             {"https://user@b@/", std::nullopt},
             {"https://[]/", std::nullopt},
         }) {
        EXPECT_EQ(webAddress(text), address) << text;
    }
    const std::string_view whole = "https://a.example/%2F";
    EXPECT_EQ(webAddress(whole.substr(0, whole.size() - 1)), "https://a.example/%252");
}

TEST(AddressTest, ReplacesEveryOccurrenceOnce) {
    EXPECT_EQ(replaceAll("{ID}/{ID}x{I", "{ID}", "{ID}{ID}"), "{ID}{ID}/{ID}{ID}x{I");
    EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

}  // namespace glintar::text
