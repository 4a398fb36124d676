#pragma once

#include "diagnostics/NetworkDiagnosticManager.h"
#include "presenter/SystemColors.h"

namespace glintar::diagnostics {

/// Green below 200 ms, orange below 800 ms, red from there, and for a clock that went backwards.
[[nodiscard]] presenter::SystemColor latencyColor(std::chrono::milliseconds latency);

}  // namespace glintar::diagnostics
