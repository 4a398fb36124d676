#pragma once

#include "diagnostics/NetworkDiagnosticManager.h"
#include "presenter/SystemColors.h"

#include <string>

namespace glintar::diagnostics {

/// How a node's state is shown, at the right end of its row.
struct StatusCell {
    enum class Mark { None, Spinner, Dot, Cross };
    Mark mark = Mark::None;
    std::string text;
    presenter::SystemColor color = presenter::SystemColor::SecondaryLabel;  ///< of mark and text
    bool isBold = false;
    int width = 60;  ///< points
};
[[nodiscard]] StatusCell statusCell(const NodeStatus& status);

/// Green below 200 ms, orange below 800 ms, red from there. Red also for a negative latency.
[[nodiscard]] presenter::SystemColor latencyColor(std::chrono::milliseconds latency);

}  // namespace glintar::diagnostics
