#include "text/Unicode.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace glintar::text {
namespace {

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
             {"ﬁ", "FI", "ﬁ"},
             {"İI", "İI", "i\u0307i"},
             {"Привет ᚠ 한", "ПРИВЕТ ᚠ 한", "привет ᚠ 한"},
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
             {"BTC", 3, "BT"},
             {"a\r\nb", 3, "a\r\n"},
             {"ae\u0301x", 3, "ae\u0301"},
             {"ab\u0301x", 3, "ab\u0301"},
             {"👩‍👩‍👧🇩🇪👍🏽x", 4, "👩‍👩‍👧🇩🇪"},
             {"1️⃣ᄒ\u1161\u11ABx", 3, "1️⃣ᄒ\u1161\u11AB"},
             {"क्षx", 2, "क्षx"},
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
    EXPECT_EQ(validUtf8("a\n\xE2\x82z\xED\xA0\x80"), "a\n\uFFFDz\uFFFD\uFFFD\uFFFD");
}

TEST(UnicodeTest, TellsValidUtf8) {
    EXPECT_TRUE(isValidUtf8("é😀\0"s));
    for (const std::string bad : {"\x80", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_FALSE(isValidUtf8(bad));
    }
}

TEST(UnicodeTest, WorksOnManyThreadsAtOnce) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 200; ++round) {
                EXPECT_EQ(upper("straße"), "STRASSE");
                EXPECT_EQ(firstCharacters("e\u0301é", 1), "e\u0301");
            }
        });
    }
}

}  // namespace
}  // namespace glintar::text
