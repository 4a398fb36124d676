#include "platform/posix/PosixFiles.h"
#include "platform/posix/XdgLoginItem.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>

namespace glintar::platform {
namespace {

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
