#pragma once

#include "support/Program.h"
#include "support/TemporaryFolder.h"

#include <string>

namespace glintar::test {

/// Whether somebody owns the name on the bus of the environment.
[[nodiscard]] bool isOnSessionBus(const std::string& name);

/// A message bus of one test's own, which starts no service by itself. Always at the same address.
class MessageBus {
public:
    MessageBus();
    void start();  ///< comes back when it takes connections
    void stop() { daemon_.stop(); }

    [[nodiscard]] std::string address() const { return "unix:path=" + socket(); }
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }

private:
    [[nodiscard]] std::string socket() const { return folder_.path() / "socket"; }
    TemporaryFolder folder_;
    Child daemon_;
};

}  // namespace glintar::test
