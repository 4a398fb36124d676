// Copies of the program that run for one user.

#include "e2e/ProgramTest.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>

namespace glintar::test {
namespace {

using namespace std::chrono_literals;

class SharedTest : public ProgramTest {
protected:
    /// How often the market was asked for prices.
    std::size_t asked() const {
        std::size_t count = 0;
        const auto lines = log();
        for (auto at = lines.find("/markets?"); at != std::string::npos; at = lines.find("/markets?", at + 1)) {
            ++count;
        }
        return count;
    }
    /// That it has used, in the kernel's ticks of 10 ms.
    static long processorTime(const Program& program) {
        std::ifstream file(fmt::format("/proc/{}/stat", program.id()));
        const std::vector<std::string> fields{std::istream_iterator<std::string>(file), {}};
        return std::stol(fields.at(13)) + std::stol(fields.at(14));  // proc(5): utime, stime
    }
    Environment environment() const override {
        auto environment = ProgramTest::environment();
        environment["XDG_RUNTIME_DIR"] = runtime.path();
        return environment;
    }

    TemporaryFolder runtime;
};

TEST_F(SharedTest, CopiesStartedAtOnceAskOnceAndOneThatEndsHandsOver) {
    auto one = start({"line"});
    auto two = start({"line"});
    ASSERT_TRUE(one.waitForOutput("\n") && two.waitForOutput("\n")) << one.errors() << two.errors();
    EXPECT_EQ(one.output(), two.output());
    auto once = start({"line", "--once"});
    EXPECT_EQ(once.wait(), 0) << once.errors();
    EXPECT_EQ(once.output(), one.output());
    EXPECT_EQ(asked(), 1U);

    std::size_t pages = 0;
    for (const auto& entry : std::filesystem::directory_iterator(runtime.path() / "glintar")) {
        if (entry.path().filename().string().starts_with("quotes-")) {
            EXPECT_EQ(entry.status().permissions(), std::filesystem::perms(0600));
            ++pages;
        }
    }
    EXPECT_EQ(pages, 2U) << "the page and its locks";

    for (auto* program : {&one, &two}) {      // one of them is the one that asked
        std::this_thread::sleep_for(2100ms);  // sooner it would be refused
        program->signal(SIGUSR1);
        EXPECT_TRUE(eventually([&] { return asked() == (program == &one ? 2 : 3); }));
    }
    std::this_thread::sleep_for(2100ms);
    one.signal(SIGTERM);
    EXPECT_EQ(one.wait(), 0);
    EXPECT_EQ(std::ranges::count(one.output(), '\n'), 3) << "whoever asked";
    two.signal(SIGUSR1);
    EXPECT_TRUE(eventually([&] { return asked() == 4; }));
    two.signal(SIGTERM);
    EXPECT_EQ(two.wait(), 0);
}

TEST_F(SharedTest, ABarsClicksAndSignalsReachItUntilItsInputEnds) {
    const auto clicks = runtime.path() / "clicks";
    ASSERT_EQ(::mkfifo(clicks.c_str(), 0600), 0);
    Program program({"sh", "-c", fmt::format("exec {} line --format i3bar <{}", GLINTAR_PROGRAM, clicks.string())},
                    environment());
    std::ofstream bar(clicks);
    ASSERT_TRUE(program.waitForOutput("full_text")) << program.errors();
    std::this_thread::sleep_for(2100ms);  // sooner a click would be refused
    bar << R"([
{"name":"bitcoin","button":2}
)" << std::flush;
    EXPECT_TRUE(eventually([&] { return asked() == 2; }));
    program.signal(SIGUSR2);
    std::this_thread::sleep_for(2100ms);
    bar << R"({"button":2)";
    bar.close();
    program.signal(SIGCONT);
    program.signal(SIGUSR1);
    EXPECT_TRUE(eventually([&] { return asked() == 3; })) << "it goes on without an input";
    const auto before = processorTime(program);
    std::this_thread::sleep_for(500ms);
    EXPECT_LT(processorTime(program) - before, 20) << "an input at its end is not read again and again";
    EXPECT_EQ(asked(), 3U);
}

}  // namespace
}  // namespace glintar::test
