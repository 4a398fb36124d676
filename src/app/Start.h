#pragma once

#include "app/Arguments.h"
#include "demo/DemoSession.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::app {

// What both doors do first.

inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;

/// What the program was started with.
struct Start {
    Arguments arguments;
    std::string configServer;  ///< address; empty means none
};

/// Reads the arguments and the environment. The error is the status to end with at once: everything there was to say,
/// "--help" and "--version" included, has been said.
[[nodiscard]] std::expected<Start, int> readStart(int argc, char** argv);

/// A variable of the environment; none when it is empty.
[[nodiscard]] std::optional<std::string_view> environment(const char* name);

/// Starts the simulated market and turns this process to its profile. None when that failed, which has been said.
[[nodiscard]] std::optional<demo::DemoSession> startDemo();

/// Prepares the heap. Before the first thread.
void tuneHeap();

}  // namespace glintar::app
