#include "diagnostics/DiagnosticsStyle.h"

namespace glintar::diagnostics {

using namespace std::chrono_literals;

presenter::SystemColor latencyColor(std::chrono::milliseconds latency) {
    if (latency < 0ms || latency >= 800ms) {
        return presenter::SystemColor::Red;
    }
    return latency < 200ms ? presenter::SystemColor::Green : presenter::SystemColor::Orange;
}

}  // namespace glintar::diagnostics
