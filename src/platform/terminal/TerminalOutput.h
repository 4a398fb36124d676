#pragma once

#include "platform/TextOutput.h"
#include "platform/terminal/TerminalScreen.h"

#include <QSocketNotifier>

#include <optional>

namespace glintar::platform {

/// Standard output; learns that a reader has gone as soon as it goes, not at the next write.
class TerminalOutput final : public TextOutput {
public:
    explicit TerminalOutput(TerminalScreen& screen);

    bool isTerminal() const override { return screen_.isTerminal(); }
    void printLine(std::string_view text) override;
    void redrawLine(std::string_view text) override;

private:
    void judge(int error);
    void closed(const std::string& failure);

    TerminalScreen& screen_;
    std::optional<QSocketNotifier> readerGone_;
    bool isClosed_ = false;
};

}  // namespace glintar::platform
