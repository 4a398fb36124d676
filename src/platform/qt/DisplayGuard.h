#pragma once

#include <optional>
#include <string>

namespace glintar::platform {

/// Why the X server that $DISPLAY names cannot be reached, in a sentence; none if it can. Qt would end the program with
/// a core dump. Before there is a QApplication.
[[nodiscard]] std::optional<std::string> displayProblem();

/// Sees to an orderly end when the X server goes away: Qt then calls exit from wherever it is, so that nothing on the
/// stack is destroyed. Between its making and `release`, such an end says "the display has gone away" on standard error
/// instead of Qt's own words, and leaves at once with status 1, without destroying anything.
///
/// One per process, made before the QApplication. Main thread only.
class DisplayGuard {
public:
    /// `programName` is what the line on standard error starts with.
    explicit DisplayGuard(std::string programName);
    ~DisplayGuard();  // as `release`
    DisplayGuard(const DisplayGuard&) = delete;
    DisplayGuard& operator=(const DisplayGuard&) = delete;

    /// The program ends by itself from here on.
    void release();
};

}  // namespace glintar::platform
