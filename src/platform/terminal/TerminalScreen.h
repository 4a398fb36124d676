#pragma once

#include "platform/Console.h"

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace glintar::platform {

/// Standard output for the lines of text, standard error as the console. On a terminal they are one place: a line that
/// is redrawn in place stays below what the console writes. Any thread. A reader that has stopped reading holds nothing
/// up once `stop` can be read.
class TerminalScreen final : public Console {
public:
    explicit TerminalScreen(int stop);
    ~TerminalScreen() override;  // leaves the cursor below the line

    [[nodiscard]] bool isTerminal() const { return isTerminal_; }

    /// The number of the error (errno), or 0.
    [[nodiscard]] int printLine(std::string_view text);
    [[nodiscard]] int redrawLine(std::string_view text);

private:
    /// What of the text is fit for a terminal, since part of it comes from servers.
    void write(Path path, std::string_view text) override;

    const int stop_;
    const bool isTerminal_;  ///< one on which a line can be redrawn
    const bool sharesTerminal_;
    [[nodiscard]] std::string clearing() const;

    std::mutex mutex_;
    std::string liveLine_;
    std::size_t liveRows_ = 1;
};

}  // namespace glintar::platform
