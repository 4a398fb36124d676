#pragma once

#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace glintar::platform {

/// Where the program says what it does. Three paths, any thread; each call writes whole lines.
///
/// Services, documents and users write much of what is said. Each text is cut, so that a log that is left running for
/// months does not fill a disk.
class Console {
public:
    enum class Path { Log, Plain, Debug };

    /// Characters of what comes from outside, in one text.
    static constexpr std::size_t kLongestQuotation = 2'000;

    virtual ~Console() = default;

    /// Writes a log entry: a prefix, the items with single blanks between them, and a blank line after.
    void log(std::initializer_list<std::string_view> items);

    /// One plain line.
    void print(std::string_view line) { write(Path::Plain, shortened(line)); }

    /// The debug log; printed in debug builds only.
    void debug(std::string_view line) { write(Path::Debug, shortened(line)); }

protected:
    /// Writes the text and a line break.
    virtual void write(Path path, std::string_view text) = 0;

private:
    static std::string_view shortened(std::string_view text);
};

}  // namespace glintar::platform
