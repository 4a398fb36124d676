#pragma once

#include "platform/Lifetime.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace glintar::platform {
class HttpCall;
struct Platform;
}  // namespace glintar::platform

namespace glintar::diagnostics {

/// What is known of a service's reachability.
struct NodeStatus {
    enum class Kind { success, idle, testing, error };
    Kind kind = Kind::idle;
    std::chrono::milliseconds latency{};  ///< with `success`

    bool operator==(const NodeStatus&) const = default;
};

/// A service that is tested.
struct DiagnosticNode {
    std::string id;  ///< UUID
    std::string name;
    std::string url;
    NodeStatus status;
};

/// Tests whether the services of the shipped source configuration can be reached, one after another. A service counts
/// as reached when it answers anything. Destroying it ends the run. Main thread only.
class NetworkDiagnosticManager {
public:
    explicit NetworkDiagnosticManager(platform::Platform& platform);
    NetworkDiagnosticManager(const NetworkDiagnosticManager&) = delete;
    NetworkDiagnosticManager& operator=(const NetworkDiagnosticManager&) = delete;
    ~NetworkDiagnosticManager();

    /// Starts a run; ignored while there is one.
    void runAllTests();

    /// None when the service was not reached. Answers within 5 seconds, never before it returns.
    using Outcome = std::optional<std::chrono::milliseconds>;
    void testNode(const std::string& address, std::function<void(Outcome latency)> onTested);

    /// The nodes as text, for a bug report: the program's version, then name and state, one line each.
    [[nodiscard]] std::string report() const;

    std::vector<DiagnosticNode> nodes;  ///< by name
    bool isTesting = false;

    /// Runs when either has changed. It may destroy the manager.
    std::function<void()> onChange;

private:
    void testNext(std::size_t index);
    void changed();

    platform::Platform& platform_;
    std::shared_ptr<platform::HttpCall> call_;
    platform::Lifetime lifetime_;  // last member
};

/// "-", "testing", "123ms" or "Failed".
[[nodiscard]] std::string stateText(const NodeStatus& status);

/// Name and state, each in a column of its own.
[[nodiscard]] std::string rowText(const DiagnosticNode& node, const std::vector<DiagnosticNode>& nodes);

}  // namespace glintar::diagnostics
