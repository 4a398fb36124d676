#include "platform/Console.h"

#include <string>

namespace glintar::platform {

namespace {

constexpr std::size_t kLongest = Console::kLongestQuotation + 200;  // with our words around it
constexpr std::size_t kMostBytes = 4 * kLongest;                    // should it not be UTF-8

bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

}  // namespace

/// Counts code points: what a reader takes for one character may consist of any number of them.
std::string_view Console::shortened(std::string_view text) {
    std::size_t characters = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        characters += beginsCharacter(text[at]) ? 1 : 0;
        if (characters > kLongest || at == kMostBytes) {
            return text.substr(0, at);
        }
    }
    return text;
}

void Console::log(std::initializer_list<std::string_view> items) {
    std::string text = "🚀 [Glintar]";
    for (const auto item : items) {
        text += ' ';
        text += shortened(item);
    }
    text += '\n';
    write(Path::Log, text);
}

}  // namespace glintar::platform
