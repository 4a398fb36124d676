#include "platform/secret/PrivateBus.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace glintar::platform {

namespace {

constexpr const char* kSecrets = "org.freedesktop.secrets";

}  // namespace

PrivateBus::PrivateBus() {
    setenv("DBUS_SESSION_BUS_ADDRESS", address().c_str(), 1);
    for (const char* const name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
        setenv(name, bus_.folder().c_str(), 1);
    }
    for (const char* const name : {"GNOME_KEYRING_CONTROL", "SSH_AUTH_SOCK"}) {
        unsetenv(name);
    }
    std::ofstream(bus_.folder() / "password") << "open sesame";
}

void PrivateBus::start() {
    if (!std::exchange(isUp_, true)) {
        bus_.start();
    }
}

void PrivateBus::stop() {
    stopKeyRing();
    bus_.stop();
    isUp_ = false;
}

void PrivateBus::startKeyRing(Ring ring) {
    start();
    ring_ = test::Child({"sh", "-c", "exec gnome-keyring-daemon --foreground --components=secrets $0 < $HOME/password",
                         ring == Ring::Open ? "--unlock" : "--components=secrets"});
    ASSERT_TRUE(test::eventually([] { return test::isOnSessionBus(kSecrets); }));
}

void PrivateBus::stopKeyRing() {
    if (ring_.id() > 0) {
        ring_.stop();
        EXPECT_TRUE(test::eventually([] { return !test::isOnSessionBus(kSecrets); }));
    }
}

std::string PrivateBus::elsewhere(std::vector<std::string> words) const {
    words.insert(words.begin(), {"/usr/bin/python3", GLINTAR_RING});
    return test::outputOf(words);
}

test::Child PrivateBus::standIn(const std::string& manner, const std::string& name) {
    start();
    std::ofstream(calls()).flush();
    return test::startTelling({"/usr/bin/python3", GLINTAR_RING, manner, name, calls()}).first;
}

std::uintmax_t PrivateBus::callsOfStandIn() const {
    return std::filesystem::file_size(calls());
}

}  // namespace glintar::platform
