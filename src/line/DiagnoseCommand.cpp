#include "line/DiagnoseCommand.h"

#include "json/JsonWriter.h"
#include "platform/Console.h"
#include "platform/Platform.h"
#include "platform/TextOutput.h"

#include <algorithm>
#include <utility>

namespace glintar::line {

namespace {

using diagnostics::DiagnosticNode;
using Kind = diagnostics::NodeStatus::Kind;

std::string jsonRow(const DiagnosticNode& node) {
    const bool isReached = node.status.kind == Kind::success;
    json::Writer writer;
    writer.beginObject().key("name").string(node.name).key("url").string(node.url);
    writer.key("reached").boolean(isReached).key("latency");
    isReached ? writer.integer(node.status.latency.count()) : writer.null();
    return std::string(writer.endObject().text());
}

}  // namespace

DiagnoseCommand::DiagnoseCommand(platform::Platform& platform, platform::TextOutput& output,
                                 const app::Arguments& arguments, std::function<void(int status)> finish)
    : output_(output), format_(arguments.format), finish_(std::move(finish)), manager_(platform) {
    output.onClosed = [this, &console = platform.console](const std::string& failure) {
        if (!failure.empty()) {
            console.print("⚠️ [Line] " + failure);
        }
        finish_(1);
    };
    manager_.onChange = [this] { printTested(); };
}

void DiagnoseCommand::printTested() {
    const auto& nodes = manager_.nodes;
    const auto isTested = [](const DiagnosticNode& node) {
        return node.status.kind == Kind::success || node.status.kind == Kind::error;
    };
    for (; printed_ < nodes.size() && isTested(nodes[printed_]); ++printed_) {
        const auto& node = nodes[printed_];
        output_.printLine(format_ == app::Format::Json ? jsonRow(node) : rowText(node, nodes));
    }
    if (!manager_.isTesting) {
        finish_(std::ranges::all_of(nodes, [](const auto& node) { return node.status.kind == Kind::success; }) ? 0 : 1);
    }
}

}  // namespace glintar::line
