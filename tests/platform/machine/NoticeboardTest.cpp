#include "platform/qtcore/QtNoticeboard.h"
#include "support/TemporaryFolder.h"

#include <QCoreApplication>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

namespace glintar::platform {
namespace {

namespace fs = std::filesystem;
using Lock = Noticeboard::Lock;

class NoticeboardTest : public testing::Test {
protected:
    std::unique_ptr<QtNoticeboard> open() const {
        ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
        return QtNoticeboard::open("/home/user/.config/glintar");
    }

    test::TemporaryFolder folder;
    fs::path runtime = folder.path() / "run";
};

TEST_F(NoticeboardTest, StandsOnlyWhereNobodyElseCanWriteOrRead) {
    struct Row {
        const char* make;
        bool stands;
    };
    for (const auto& [make, stands] :
         {Row{"true", true}, Row{"chmod 755 run", true}, Row{"chmod 777 run", false}, Row{"rmdir run", false},
          Row{"mkdir -m 755 run/glintar", false}, Row{"touch run/glintar", false}, Row{"chown 1 run", false},
          Row{"mkdir -m 700 run/glintar; chown 1 run/glintar", false}}) {
        if (std::string_view(make).contains("chown") && ::getuid() != 0) {
            continue;  // only root gives a folder away
        }
        fs::remove_all(runtime);
        ASSERT_EQ(std::system(fmt::format("cd {}; mkdir -m 700 run; {}", folder.path().string(), make).c_str()), 0);
        EXPECT_EQ(open() != nullptr, stands) << make;
    }
    runtime = "run";
    EXPECT_FALSE(open());
}

TEST_F(NoticeboardTest, APageReplacesTheOldOneAndWhatIsNoPageIsNone) {
    ASSERT_TRUE(fs::create_directory(runtime));
    ASSERT_EQ(::chmod(runtime.c_str(), 0700), 0);
    const auto board = open();
    int posted = 0;
    board->onPosted = [&] { ++posted; };
    EXPECT_FALSE(board->read());
    EXPECT_TRUE(board->post("a longer page") && board->post("a page"));
    EXPECT_EQ(board->read(), "a page");
    while (posted == 0) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    fs::path page;
    for (const auto& entry : fs::directory_iterator(runtime / "glintar")) {
        EXPECT_EQ(entry.status().permissions(), fs::perms(0600));
        page = entry.path().has_extension() ? page : entry.path();
    }
    for (const auto* make :
         {"truncate -s 5M", "rm", "ln -s /etc/passwd", "ln -sf /dev/zero", "rm", "mkfifo", "rm", "mkdir"}) {
        ASSERT_EQ(std::system(fmt::format("{} {}", make, page.string()).c_str()), 0);
        EXPECT_FALSE(board->read()) << make;
    }
    EXPECT_FALSE(board->post("a page")) << "in the place of a folder";
    EXPECT_EQ(std::distance(fs::directory_iterator(runtime / "glintar"), {}), 2) << "nothing half written is left";
}

TEST_F(NoticeboardTest, ALockIsGivenBackHoweverItsHolderEnds) {
    ASSERT_TRUE(fs::create_directory(runtime));
    ASSERT_EQ(::chmod(runtime.c_str(), 0700), 0);
    const auto board = open();
    EXPECT_FALSE(board->askForRefresh(7)) << "nobody to ask";
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const auto other = ::fork();
    if (other == 0) {
        static int report = ready[1];
        ::signal(SIGUSR1, [](int) { std::ignore = ::write(report, "asked", 5); });
        const auto its = open();
        const char held = its->lock(7) == Lock::Held ? 'h' : 't';
        std::ignore = ::write(report, &held, 1);
        for (;;) {
            ::pause();
        }
    }
    char said[5];
    EXPECT_TRUE(::read(ready[0], said, 1) == 1 && *said == 'h');
    EXPECT_EQ(board->lock(7), Lock::Taken);
    EXPECT_EQ(board->lock(8), Lock::Held);
    EXPECT_TRUE(board->askForRefresh(7) && ::read(ready[0], said, 5) == 5);
    ::kill(other, SIGKILL);
    ::waitpid(other, nullptr, 0);
    EXPECT_EQ(board->lock(7), Lock::Held);
}

}  // namespace
}  // namespace glintar::platform
