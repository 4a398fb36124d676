#include "platform/Console.h"

#include <string>

namespace glintar::platform {

void Console::log(std::initializer_list<std::string_view> items) {
    std::string text = "🚀 [Glintar]";
    for (const auto item : items) {
        text += ' ';
        text += item;
    }
    text += '\n';
    write(Path::Log, text);
}

}  // namespace glintar::platform
