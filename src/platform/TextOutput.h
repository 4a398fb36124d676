#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace glintar::platform {

/// Standard output as a place for lines of text. Main thread only.
class TextOutput {
public:
    virtual ~TextOutput() = default;

    [[nodiscard]] virtual bool isTerminal() const = 0;

    /// Writes one line and its line break.
    virtual void printLine(std::string_view text) = 0;

    /// On a terminal: puts the text, of one line or several, in place of the one that was put there last; what does not
    /// fit is cut off. An empty one leaves nothing there.
    virtual void redrawLine(std::string_view text) = 0;

    /// Runs once, on the main thread, when nothing can be written any more: because nobody reads it, or for another
    /// reason, which then stands in `failure`.
    std::function<void(const std::string& failure)> onClosed;
};

}  // namespace glintar::platform
