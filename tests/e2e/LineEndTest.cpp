// How `glintar line` ends, whatever it is doing and whoever ends it.

#include "e2e/ProgramTest.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <signal.h>

#include <chrono>
#include <ranges>
#include <thread>

namespace glintar::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using Output = Program::Output;

class LineEndTest : public ProgramTest {
protected:
    /// A sanitizer's own file may lie beside it: ThreadSanitizer makes one when a program starts and removes it at
    /// once, unless a signal comes between.
    static bool hasDemonstration(const TemporaryFolder& folder) {
        return std::ranges::any_of(std::filesystem::directory_iterator(folder.path()), [](const auto& entry) {
            return entry.path().filename().string().starts_with("glintar-demo-");
        });
    }
    static bool isLeftByDemonstration(const TemporaryFolder& folder) {
        return eventually([&] { return !hasDemonstration(folder); });
    }
};

TEST_F(LineEndTest, SignalsEndItAtOnceEvenWhileAServiceHangsOrNobodyReadsWhatItWrites) {
    struct Row {
        const char* name;
        int signal;
        std::vector<std::string> arguments;
        Output output;
        const char* fault;
        int status;
    };
    for (const auto& row : {Row{"interrupt", SIGINT, {"line"}, Output::Pipe, "hang", 0},
                            Row{"terminate", SIGTERM, {"line"}, Output::Pipe, "hang", 0},
                            Row{"hang up", SIGHUP, {"line"}, Output::Pipe, "hang", 0},
                            Row{"terminate, once", SIGTERM, {"line", "--once"}, Output::Pipe, "hang", 1},
                            Row{"full pipe", SIGTERM, {"line"}, Output::FullPipe, "off", 0},
                            Row{"errors full", SIGTERM, {"line"}, Output::FullErrors, "hang", 0},
                            Row{"errors full, once", SIGTERM, {"line", "--once"}, Output::FullErrors, "hang", 1},
                            Row{"stopped terminal", SIGTERM, {"line"}, Output::Terminal, "off", 0}}) {
        SCOPED_TRACE(row.name);
        fault(row.fault);
        const auto asked = log().size();
        auto program = start(row.arguments, {}, row.output);
        // Where nothing takes its log it may not come to asking.
        ASSERT_TRUE(eventually(
            [&] { return row.output == Output::FullErrors ? catches(program, row.signal) : log().size() > asked; }));
        if (row.output == Output::Terminal) {
            ASSERT_TRUE(program.waitForOutput("BTC "));
            program.stopTerminal();
        }
        if (row.output != Output::Pipe) {
            std::this_thread::sleep_for(300ms);  // until it waits for room
        }
        const auto before = std::chrono::steady_clock::now();
        program.signal(row.signal);
        EXPECT_EQ(program.waitUnread(), row.status);
        EXPECT_LT(std::chrono::steady_clock::now() - before, 2s);
    }
}

TEST_F(LineEndTest, ARefreshThatFellDueWhileItWasStoppedComesAtOnce) {
    // A timer that starts anew costs most of a second each time, a busy machine only now and then.
    EXPECT_TRUE(std::ranges::any_of(std::views::iota(0, 4), [this](int) {
        auto program = start({"line"});
        if (!program.waitForErrors("检查列表更新")) {  // a second before the first refresh
            return false;
        }
        program.signal(SIGSTOP);
        std::this_thread::sleep_for(1500ms);
        const auto before = std::chrono::steady_clock::now();
        program.signal(SIGCONT);
        return program.waitForOutput("BTC ") && std::chrono::steady_clock::now() - before < 700ms;
    }));
}

TEST_F(LineEndTest, StreamsThatCannotBeWrittenAreNoReasonToCrash) {
    struct Row {
        std::string command;
        int status;
    };
    const std::string program = GLINTAR_PROGRAM;
    for (const auto& [command, status] :
         {Row{" lien 2>/dev/full", 2}, Row{" lien 2>&-", 2}, Row{" --help >/dev/full", 1},
          Row{" line --once >/dev/full", 1}, Row{" line --once >&- 2>&-", 0}, Row{" line --once 2>/dev/full", 0}}) {
        Program shell({"sh", "-c", program + command}, environment());
        EXPECT_EQ(shell.wait(), status) << command << shell.errors();
    }
}

TEST_F(LineEndTest, AReaderThatGoesAwayEndsItBeforeTheNextLine) {
    auto program = start({"line"});
    ASSERT_TRUE(program.waitForOutput("\n"));
    program.closeOutput();
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(LineEndTest, NohupLetsItOutliveItsTerminal) {
    Program program({"nohup", GLINTAR_PROGRAM, "line"}, environment());
    ASSERT_TRUE(program.waitForOutput("\n")) << program.errors();
    EXPECT_FALSE(catches(program, SIGHUP));
}

TEST_F(LineEndTest, AnInterruptFromTheKeyboardLeavesTheDemonstrationsLineAsItWas) {
    auto program = start({"line", "--demo"}, {}, Program::Output::Terminal);
    ASSERT_TRUE(program.waitForOutput("[simulated] BTC ")) << program.errors();
    program.type("\x03");
    EXPECT_EQ(program.wait(), 0);
    const auto last = program.output().substr(program.output().rfind("[simulated]"));
    EXPECT_THAT(last, HasSubstr(" | SOL ")) << "the market must not end before the line";
}

TEST_F(LineEndTest, TheDemonstrationIsMarkedAndLeavesNothingBehind) {
    const TemporaryFolder temporary;
    for (const int signal : {SIGTERM, SIGKILL}) {
        auto program = start({"line", "--demo"}, {{"TMPDIR", temporary.path()}});
        ASSERT_TRUE(program.waitForOutput("[simulated] BTC ")) << program.errors();
        EXPECT_TRUE(hasDemonstration(temporary));
        program.signal(signal);
        EXPECT_EQ(program.wait(), signal == SIGTERM ? std::optional(0) : std::nullopt);
        EXPECT_TRUE(isLeftByDemonstration(temporary)) << "the market notices by itself";
    }
    // However early it ends.
    for (int i = 0; i < 20; ++i) {
        auto program = start({"line", "--demo"}, {{"TMPDIR", temporary.path()}});
        std::this_thread::sleep_for(i * 5ms);
        program.signal(i % 2 == 0 ? SIGTERM : SIGINT);
        static_cast<void>(program.wait());
    }
    EXPECT_TRUE(isLeftByDemonstration(temporary));
}

}  // namespace
}  // namespace glintar::test
