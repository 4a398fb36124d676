#pragma once

#include "platform/real/RealPlatform.h"
#include "platform/terminal/TerminalOutput.h"

#include <QCoreApplication>

namespace glintar::platform {

/// The real machine seen from a terminal. One a process.
class TerminalPlatform {
public:
    /// `argc` and `argv` are main's and must live as long.
    TerminalPlatform(int& argc, char** argv, const RealPlatform::Options& options)
        : application_(argc, argv), machine_(options) {}

    [[nodiscard]] RealPlatform& machine() { return machine_; }
    [[nodiscard]] TextOutput& output() { return output_; }

private:
    QCoreApplication application_;
    RealPlatform machine_;
    TerminalOutput output_{machine_.screen()};
};

}  // namespace glintar::platform
