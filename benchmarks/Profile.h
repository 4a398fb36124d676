#pragma once

#include "support/LoopbackServer.h"
#include "support/TemporaryFolder.h"

#include <map>
#include <string>
#include <vector>

namespace glintar::bench {

/// A service on loopback and the profile of a user whose only source it is. Over TLS, its authority stands among as
/// many others as Debian ships, in a hashed folder and in one bundle.
class Profile {
public:
    explicit Profile(support::LoopbackServer::Transport transport);

    [[nodiscard]] std::string url() const;
    [[nodiscard]] std::string bundle() const { return (folder_.path() / "bundle.crt").string(); }
    [[nodiscard]] std::string hashedFolder() const { return (folder_.path() / "certs").string(); }

    /// "env", settings and the command: the program in this profile. `keepBus` leaves it the message bus.
    [[nodiscard]] std::vector<std::string> command(const std::string& program, std::vector<std::string> arguments,
                                                   bool keepBus) const;

private:
    void writeProfile();
    void writeAuthorities();

    test::TemporaryFolder folder_;
    support::LoopbackServer server_;
    const bool isTls_;
};

}  // namespace glintar::bench
