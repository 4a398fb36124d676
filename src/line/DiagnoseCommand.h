#pragma once

#include "app/Arguments.h"
#include "diagnostics/NetworkDiagnosticManager.h"

#include <functional>

namespace glintar::platform {
struct Platform;
class TextOutput;
}  // namespace glintar::platform

namespace glintar::line {

/// `glintar diagnose`: tests the services once, one after another, and prints a line as each test ends.
class DiagnoseCommand {
public:
    /// `finish` takes the exit status, once at most: 1 when a service was not reached.
    DiagnoseCommand(platform::Platform& platform, platform::TextOutput& output, const app::Arguments& arguments,
                    std::function<void(int status)> finish);

    void start() { manager_.runAllTests(); }
    void interrupt() { finish_(1); }

private:
    void printTested();

    platform::TextOutput& output_;
    app::Format format_;
    std::function<void(int)> finish_;
    std::size_t printed_ = 0;
    diagnostics::NetworkDiagnosticManager manager_;
};

}  // namespace glintar::line
