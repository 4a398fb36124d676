#include "text/Address.h"

#include <gtest/gtest.h>

namespace glintar::text {
namespace {

TEST(AddressTest, EncodesWhatCannotBeSentAndNothingElse) {
    struct Case {
        std::string text;
        std::optional<std::string> address;
    };
    using namespace std::string_literals;
    for (const auto& [text, address] : {
             Case{"https://a.example/x?ids=a,b&c=1#d", "https://a.example/x?ids=a,b&c=1#d"},
             {"HTTPS://a.example", "HTTPS://a.example"},
             {"http://[::1]:8080/-._~!$'()*+;=@", "http://[::1]:8080/-._~!$'()*+;=@"},
             {"https://a.example/a b|c\\d\"<>^`{}", "https://a.example/a%20b%7Cc%5Cd%22%3C%3E%5E%60%7B%7D"},
             {"https://a.example/é?x=ᚠ", "https://a.example/%C3%A9?x=%E1%9A%A0"},
             {"https://a.example/\r\nHost: b\0\x7F"s, "https://a.example/%0D%0AHost:%20b%00%7F"},
             {"https://a.example/%2F%zz%4", "https://a.example/%2F%25zz%254"},
             {"https://u:p@a.example", "https://u:p@a.example"},
             {"", std::nullopt},
             {"a.example", std::nullopt},
             {"//a.example", std::nullopt},
             {"https:/a.example", std::nullopt},
             {" https://a.example", std::nullopt},
             {"ftp://a.example", std::nullopt},
             {"file:///etc/passwd", std::nullopt},
             {"javascript:alert(1)", std::nullopt},
             {"https://", std::nullopt},
             {"https:///path", std::nullopt},
             {"https://?q", std::nullopt},
             {"https://#f", std::nullopt},
             {"https://:443/", std::nullopt},
             {"https://user@/", std::nullopt},
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

}  // namespace
}  // namespace glintar::text
