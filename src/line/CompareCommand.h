#pragma once

#include "app/Arguments.h"
#include "line/CompareFormat.h"
#include "platform/Lifetime.h"

#include <functional>
#include <string>
#include <vector>

namespace glintar::platform {
struct Platform;
class TextOutput;
}  // namespace glintar::platform

namespace glintar::line {

/// `glintar compare`: asks all sources once for the user's coins and prints a table: on a terminal as the answers
/// arrive, else when all are there.
class CompareCommand {
public:
    /// `finish` takes the exit status, once at most: 1 when no source had a price. It may come before `start` returns.
    CompareCommand(platform::Platform& platform, platform::TextOutput& output, const app::Arguments& arguments,
                   std::function<void(int status)> finish);

    void start();
    void interrupt();

private:
    [[nodiscard]] std::string table() const;
    void priceArrived();
    void finished();

    platform::Platform& platform_;
    platform::TextOutput& output_;
    const app::Arguments arguments_;
    std::function<void(int)> finish_;
    std::vector<std::string> sources_;
    CompareRows coins_;
    bool isDrawn_ = true;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::line
