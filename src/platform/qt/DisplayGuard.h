#pragma once

#include <optional>
#include <string>

namespace glintar::platform {

/// Why the X server that $DISPLAY names cannot be reached, in a sentence; none if it can. Qt would end the program with
/// a core dump. Before there is a QApplication.
[[nodiscard]] std::optional<std::string> displayProblem();

/// Makes the end orderly when the X server goes away. Qt then calls exit from wherever it is, and nothing on the stack
/// is destroyed. From here on such an end says "the display has gone away" on standard error instead of Qt's own words,
/// and leaves at once with status 1, without destroying anything. Once, before there is a QApplication.
void guardDisplay();

/// The program ends by itself from here on.
void releaseDisplay();

}  // namespace glintar::platform
