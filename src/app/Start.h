#pragma once

#include "app/Arguments.h"
#include "demo/DemoSession.h"
#include "platform/Noticeboard.h"
#include "platform/real/RealPlatform.h"

#include <expected>
#include <memory>
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

/// Prepares the process, before its first thread: the heap, and for a demonstration the simulated market, to whose
/// profile the process is turned and which ends with what is returned. The error is the status to end with; why has
/// been said.
[[nodiscard]] std::expected<std::optional<demo::DemoSession>, int> prepareProcess(const Arguments& arguments);

/// What the copies of the program for this profile share; none for a demonstration, and where there is no place for it.
/// Made after Qt's application object.
[[nodiscard]] std::unique_ptr<platform::Noticeboard> noticeboard(const Arguments& arguments);

/// The dashboard of the desktop program, if that runs. Another process does it, and nobody waits for it.
void openDashboard();

/// What the machine is made with; `session` is that of a demonstration.
[[nodiscard]] platform::RealPlatform::Options platformOptions(const Start& start,
                                                              const std::optional<demo::DemoSession>& session);

}  // namespace glintar::app
