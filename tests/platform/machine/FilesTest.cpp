#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixMachine.h"
#include "platform/posix/XdgDirectories.h"
#include "platform/posix/XdgLoginItem.h"
#include "support/TemporaryFolder.h"
#include "support/TestFiles.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace glintar::platform {
namespace {

class FilesTest : public testing::Test {
protected:
    test::TemporaryFolder folder;
    PosixFiles files;
};

TEST_F(FilesTest, AFileIsReplacedWholeAndLeavesNothingBeside) {
    const auto path = folder.path() / "document.json";
    const std::string bytes("a\0b\xff", 4);
    ASSERT_TRUE(files.replace(path, "older and longer"));
    ASSERT_TRUE(files.replace(path, bytes));
    EXPECT_EQ(files.read(path), bytes);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    EXPECT_TRUE(files.remove(path));
    EXPECT_FALSE(files.exists(path));
    EXPECT_EQ(files.read(path).error(), "No such file or directory");
}

TEST_F(FilesTest, WhatAKilledRunLeftGoesAndNothingElse) {
    const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours{2};
    for (const auto& [name, isOurs] : {std::pair{"a.json.~Ab3dEf", true},
                                       {"glintar.conf.bXqlzw", true},
                                       {"glintar.conf", false},
                                       {"a.json", false},
                                       {"glintar.conf.backup", false},
                                       {"glintar.conf.Backup", false},
                                       {"a.json.aBcDeF", false},
                                       {"x", false}}) {
        const auto path = folder.path() / name;
        ASSERT_TRUE(files.replace(path, "x"));
        removeLeftovers(folder.path());
        EXPECT_TRUE(files.exists(path)) << name << " may be in use";
        std::filesystem::last_write_time(path, old);
        removeLeftovers(folder.path());
        EXPECT_EQ(files.exists(path), !isOurs) << name;
    }
}

TEST_F(FilesTest, AFailedReplacementKeepsTheOldFile) {
    const auto missing = files.replace(folder.path() / "nowhere" / "x", "new");
    EXPECT_EQ(missing.error(), "No such file or directory");
    std::filesystem::create_directories(folder.path() / "taken" / "inside");
    EXPECT_FALSE(files.replace(folder.path() / "taken", "new"));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "taken" / "inside"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1) << "no half file stays";
}

TEST_F(FilesTest, WhatIsNoFileIsAnErrorAndNeverWaits) {
    EXPECT_EQ(files.read(folder.path()).error(), "Is a directory");
    const auto pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(files.read(pipe).error(), "Not a regular file");
    const auto huge = folder.path() / "huge";
    ASSERT_TRUE(files.replace(huge, ""));
    ASSERT_EQ(::truncate(huge.c_str(), off_t{1} << 40), 0);
    EXPECT_EQ(files.read(huge).error(), "File too large");
}

TEST_F(FilesTest, TheUsersFoldersFollowXdg) {
    struct Row {
        const char* data;
        std::string expected;
    };
    const XdgDirectories directories;
    const auto home = folder.path() / "home";
    ::setenv("HOME", home.c_str(), 1);
    for (const auto& [data, expected] :
         {Row{nullptr, home / ".local/share/glintar"}, Row{"", home / ".local/share/glintar"},
          Row{"relative", home / ".local/share/glintar"}, Row{folder.path().c_str(), folder.path() / "glintar"}}) {
        data ? ::setenv("XDG_DATA_HOME", data, 1) : ::unsetenv("XDG_DATA_HOME");
        EXPECT_EQ(directories.applicationSupport(), expected);
        EXPECT_EQ(directories.documents(), expected);
        EXPECT_TRUE(std::filesystem::is_directory(expected)) << "made when it is handed out";
        std::filesystem::remove(expected);
    }
    ::unsetenv("XDG_CACHE_HOME");
    EXPECT_EQ(directories.caches(), home / ".cache/glintar");
    ::unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(XdgDirectories::configuration(), home / ".config/glintar");
    ::unsetenv("HOME");
    EXPECT_EQ(directories.caches(), std::nullopt);
}

TEST(LocalTimeTest, IsTheUsersZone) {
    const ZoneLocalTime time;
    const auto noon = WallTime(std::chrono::sys_days{std::chrono::July / 1 / 2026} + std::chrono::hours{12});
    ::setenv("TZ", "Asia/Tokyo", 1);
    EXPECT_EQ(time.clockText(noon), "21:00:00");
    ::setenv("TZ", "UTC", 1);
    EXPECT_EQ(time.clockText(noon), "12:00:00");
}

class LoginItemTest : public testing::Test {
protected:
    LoginItemTest() { ::setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1); }
    ~LoginItemTest() override { ::unsetenv("XDG_CONFIG_HOME"); }

    test::TemporaryFolder folder;
    const std::filesystem::path entry = folder.path() / "autostart" / "org.glintar.Glintar.desktop";
    PosixFiles files;
    XdgLoginItem item{files, "/opt/my $x`\"\\%f/glintar-desktop", "Xorg:XFCE"};
};

TEST_F(LoginItemTest, ItIsAValidEntryThatGoesAsItCame) {
    EXPECT_FALSE(item.isEnabled());
    EXPECT_FALSE(item.unregisterItem());
    ASSERT_TRUE(item.registerItem());
    EXPECT_TRUE(item.isEnabled());
    EXPECT_THAT(*files.read(entry), testing::HasSubstr(R"(Exec="/opt/my \\$x\\`\\"\\\\%%f/glintar-desktop")"));
    EXPECT_EQ(std::system(fmt::format("desktop-file-validate {}", entry.string()).c_str()), 0);
    EXPECT_TRUE(item.unregisterItem());
    EXPECT_FALSE(item.isEnabled());
    ASSERT_TRUE(files.replace(folder.path() / "file", ""));
    ::setenv("XDG_CONFIG_HOME", (folder.path() / "file").c_str(), 1);
    EXPECT_THAT(item.registerItem().error(), testing::HasSubstr("Not a directory"));
}

TEST_F(LoginItemTest, WhatOthersMadeOfItCounts) {
    for (const auto& [line, isEnabled] :
         std::vector<std::pair<std::string, bool>>{{"Hidden=true", false},
                                                   {"Hidden = true", false},
                                                   {"Hidden=false", true},
                                                   {"X-GNOME-Autostart-enabled=false", false},
                                                   {"OnlyShowIn=GNOME;KDE;", false},
                                                   {"OnlyShowIn=GNOME;XFCE", true},
                                                   {"NotShowIn=XFCE;", false},
                                                   {"NotShowIn=XF;CE;", true},
                                                   {"[Desktop Action x]\nHidden=true", true}}) {
        ASSERT_TRUE(item.registerItem());
        ASSERT_TRUE(files.replace(entry, *files.read(entry) + line + "\n"));
        EXPECT_EQ(item.isEnabled(), isEnabled) << line;
        XdgLoginItem moved(files, "/usr/new", "XFCE");
        moved.repair();
        EXPECT_EQ(files.read(entry)->contains("Exec=\"/usr/new\""), isEnabled) << "what is off stays as it is";
    }
}

}  // namespace
}  // namespace glintar::platform
