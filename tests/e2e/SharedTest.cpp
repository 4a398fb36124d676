// Copies of the program that run for one user.

#include "e2e/ProgramTest.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <chrono>
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

}  // namespace
}  // namespace glintar::test
