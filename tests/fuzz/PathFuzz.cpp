// A path, a line break, and the document it is followed in.

#include "Fuzz.h"
#include "json/Json.h"
#include "market/ValuePath.h"

using namespace glintar;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes = inputText(data, size);
    const auto end = bytes.find('\n');
    if (end == std::string_view::npos) {
        return 0;
    }
    const auto document = json::Document::parse(bytes.substr(end + 1));
    if (!document) {
        return 0;
    }
    const auto value = market::valueAtPath(std::string_view(bytes).substr(0, end), document->root());
    if (value) {
        require(value->number().has_value() + value->string().has_value() + value->other().has_value() == 1);
    }
    return 0;
}
