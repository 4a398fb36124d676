#pragma once

#include "demo/DemoSession.h"
#include "support/Program.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::test {

/// A simulated market and a profile that asks it, for the real program.
class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        auto started = demo::DemoSession::start(GLINTAR_MARKET);
        if (started) {
            session.emplace(*std::move(started));
        }
    }
    void SetUp() override { ASSERT_TRUE(session) << "the market does not start"; }

    /// The profile's; without a display, a bus or a configuration server.
    virtual Environment environment() const {
        return {{"XDG_CONFIG_HOME", session->configHome()}, {"XDG_DATA_HOME", session->dataHome()},
                {"XDG_CACHE_HOME", session->cacheHome()},   {"XDG_RUNTIME_DIR", session->cacheHome()},
                {"DBUS_SESSION_BUS_ADDRESS", std::nullopt}, {"DISPLAY", std::nullopt},
                {"WAYLAND_DISPLAY", std::nullopt},          {"GLINTAR_CONFIG_SERVER", std::nullopt}};
    }

    /// `extra` goes before the environment above.
    Program start(const std::vector<std::string>& arguments, Environment extra = {},
                  Program::Output output = Program::Output::Pipe) const {
        std::vector<std::string> command{GLINTAR_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        extra.merge(environment());
        return Program(command, extra, output);
    }

    /// The folder of its documents and preferences.
    std::filesystem::path dataFolder() const { return session->dataHome() / "glintar"; }
    std::filesystem::path preferencesFile() const { return session->configHome() / "glintar" / "glintar.conf"; }

    void preferences(std::string_view lines) const { std::ofstream(preferencesFile()) << "[General]\n" << lines; }

    void fault(const std::string& kind) const {
        httplib::Client market(session->address());
        ASSERT_TRUE(market.Get("/control/fault?kind=" + kind)) << kind;
    }

    std::string log() const {
        httplib::Client market(session->address());
        const auto answer = market.Get("/control/log");
        return answer ? answer->body : "";
    }

    /// Whether it has come so far that the signal does not kill it.
    static bool catches(const Program& program, int signal) {
        std::ifstream status(fmt::format("/proc/{}/status", program.id()));
        std::string word;
        while (status >> word && word != "SigCgt:") {
        }
        std::uint64_t caught = 0;
        status >> std::hex >> caught;
        return (caught >> (signal - 1) & 1) != 0;
    }

    std::optional<demo::DemoSession> session;
};

}  // namespace glintar::test
