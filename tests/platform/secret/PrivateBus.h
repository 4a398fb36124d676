#pragma once

#include "support/MessageBus.h"

#include <string>

namespace glintar::platform {

/// A message bus with a key ring. While it lives, the environment names it as the session's bus, and its folder as home
/// and runtime directory.
class PrivateBus {
public:
    PrivateBus();

    void start();  ///< unless it is up, as do those that follow
    void stop();

    /// GNOME Keyring, whose login key ring has a password that opens it at once or not at all.
    enum class Ring { Open, Locked };
    void startKeyRing(Ring ring);
    void stopKeyRing();

    /// What another program does (ring.py); what it printed.
    std::string elsewhere(std::vector<std::string> words) const;

    [[nodiscard]] std::size_t itemCount(const std::string& service) const {
        return elsewhere({"count", service}).size();
    }

    /// Owns a name and answers no call, or refuses each.
    [[nodiscard]] test::Child standIn(const std::string& manner, const std::string& name);
    [[nodiscard]] std::uintmax_t callsOfStandIn() const;

    [[nodiscard]] std::string address() const { return bus_.address(); }

private:
    [[nodiscard]] std::filesystem::path calls() const { return bus_.folder() / "calls"; }

    test::MessageBus bus_;
    test::Child ring_;
    bool isUp_ = false;
};

}  // namespace glintar::platform
