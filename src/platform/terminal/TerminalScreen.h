#pragma once

#include <mutex>
#include <string>
#include <string_view>

namespace glintar::platform {

/// Standard output and standard error as one place: on a terminal, a line that is redrawn in place stays below whatever
/// else is written. Any thread.
class TerminalScreen {
public:
    TerminalScreen();
    ~TerminalScreen();  // leaves the cursor below the line

    [[nodiscard]] bool isTerminal() const { return isTerminal_; }

    /// False when nobody can read the output any more.
    [[nodiscard]] bool printLine(std::string_view text);
    [[nodiscard]] bool redrawLine(std::string_view text);

    /// Writes to standard error; control characters but line breaks and tabs become question marks, since part of the
    /// text comes from servers.
    void writeError(std::string_view text);

private:
    const bool isTerminal_;
    const bool sharesTerminal_;
    std::mutex mutex_;
    std::string liveLine_;
};

}  // namespace glintar::platform
