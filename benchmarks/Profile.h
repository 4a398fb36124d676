#pragma once

#include "support/LoopbackServer.h"
#include "support/TemporaryFolder.h"

#include <cstddef>
#include <string>
#include <vector>

namespace glintar::bench {

/// A service on loopback and the profile of a user whose only source it is. Over TLS, its authority stands among as
/// many others as Debian ships, in a hashed folder and in one bundle.
class Profile {
public:
    /// Which coins there are, whether their quotes name an icon, and what the program shows them in.
    struct Choices {
        std::size_t coins = 2;
        bool hasIcons = false;
        int displayMode = 0;
        bool isShared = false;  ///< copies of the program share what they get; otherwise each asks for itself
    };

    explicit Profile(support::LoopbackServer::Transport transport) : Profile(transport, Choices{}) {}
    Profile(support::LoopbackServer::Transport transport, Choices choices);

    /// Saves a reference price for every coin, which has a running program refresh at once.
    void setReferencePrice(double price);

    /// How often programs have asked since there is this profile; waits until it is so often.
    [[nodiscard]] std::size_t refreshes() const;
    void waitForRefreshes(std::size_t count) const;

    [[nodiscard]] std::string url() const;
    [[nodiscard]] std::string bundle() const { return (folder_.path() / "bundle.crt").string(); }
    [[nodiscard]] std::string hashedFolder() const { return (folder_.path() / "certs").string(); }

    /// "env", settings and the command: the program in this profile. `keepBus` leaves it the message bus; `desktop` is
    /// what $XDG_CURRENT_DESKTOP says.
    [[nodiscard]] std::vector<std::string> command(const std::string& program, std::vector<std::string> arguments,
                                                   bool keepBus, const std::string& desktop = {}) const;

private:
    void writeSources();
    void writePreferences(double referencePrice);
    void writeAuthorities();

    const Choices choices_;
    test::TemporaryFolder folder_;
    support::LoopbackServer server_;
    const bool isTls_;
};

}  // namespace glintar::bench
