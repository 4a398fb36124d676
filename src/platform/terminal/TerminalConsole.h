#pragma once

#include "platform/Console.h"
#include "platform/terminal/TerminalScreen.h"

namespace glintar::platform {

/// The console on standard error, since standard output holds the price line.
class TerminalConsole final : public Console {
public:
    explicit TerminalConsole(TerminalScreen& screen) : screen_(screen) {}

protected:
    void write(Path path, std::string_view text) override {
#ifdef NDEBUG
        if (path == Path::Debug) {
            return;
        }
#else
        static_cast<void>(path);
#endif
        screen_.writeError(text);
    }

private:
    TerminalScreen& screen_;
};

}  // namespace glintar::platform
