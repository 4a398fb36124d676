#pragma once

#include <initializer_list>
#include <string_view>

namespace glintar::platform {

/// Where the program says what it does. Three paths, any thread; each call writes whole lines.
class Console {
public:
    enum class Path { Log, Plain, Debug };

    virtual ~Console() = default;

    /// Writes a log entry: a prefix, the items with single blanks between them, and a blank line after.
    void log(std::initializer_list<std::string_view> items);

    /// One plain line.
    void print(std::string_view line) { write(Path::Plain, line); }

    /// The debug log; printed in debug builds only.
    void debug(std::string_view line) { write(Path::Debug, line); }

protected:
    /// Writes the text and a line break.
    virtual void write(Path path, std::string_view text) = 0;
};

}  // namespace glintar::platform
