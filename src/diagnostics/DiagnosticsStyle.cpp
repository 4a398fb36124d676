#include "diagnostics/DiagnosticsStyle.h"

namespace glintar::diagnostics {

using namespace std::chrono_literals;
using presenter::SystemColor;

SystemColor latencyColor(std::chrono::milliseconds latency) {
    if (latency < 0ms || latency >= 800ms) {
        return SystemColor::Red;
    }
    return latency < 200ms ? SystemColor::Green : SystemColor::Orange;
}

StatusCell statusCell(const NodeStatus& status) {
    using Mark = StatusCell::Mark;
    switch (status.kind) {
        case NodeStatus::Kind::success:
            return {.mark = Mark::Dot, .text = stateText(status), .color = latencyColor(status.latency)};
        case NodeStatus::Kind::idle:
            return {.text = stateText(status)};
        case NodeStatus::Kind::testing:
            return {.mark = Mark::Spinner};
        case NodeStatus::Kind::error:
            return {
                .mark = Mark::Cross, .text = stateText(status), .color = SystemColor::Red, .isBold = true, .width = 80};
    }
    return {};
}

}  // namespace glintar::diagnostics
