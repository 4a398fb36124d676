#include "Fuzz.h"
#include "text/Address.h"
#include "text/Number.h"
#include "text/Unicode.h"

#include <charconv>
#include <cmath>

namespace {

using namespace glintar;

void checkUnicode(const std::string& text) {
    require(text::isValidUtf8(text::upper(text)) && text::isValidUtf8(text::lower(text)));
    require(text::isValidUtf8(text) == (text::validUtf8(text) == text));
    require(text::trimmed(text::trimmed(text)) == text::trimmed(text));

    const std::string line = text::oneLine(text);
    require(text::isValidUtf8(line) && text::oneLine(line) == line && !line.contains('\n'));

    const std::size_t count = text::characterCount(text);
    require(count <= text.size() && text::firstCharacters(text, count) == text);
    std::size_t before = 0;
    for (std::size_t i = 1; i <= count && i < 40; ++i) {
        const std::size_t length = text::firstCharacters(text, i).size();
        require(length > before);
        before = length;
    }
}

void checkAddress(const std::string& text) {
    if (const auto address = text::webAddress(text)) {
        require(text::webAddress(*address) == address);
        for (const char c : *address) {
            require(c > 0x20 && c < 0x7f);
        }
    }
}

void checkNumber(const std::string& text) {
    const auto number = text::parseDecimal(text);
    require(!number || std::isfinite(*number));
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec == std::errc() && read.ptr == text.data() + text.size() && std::isfinite(value)) {
        require(number == value);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = inputText(data, size);
    checkUnicode(text);
    checkAddress(text);
    checkNumber(text);
    return 0;
}
