#include "platform/virtual/VirtualDesktop.h"
#include "platform/virtual/VirtualPlatform.h"
#include "platform/virtual/VirtualWorkspace.h"
#include "support/Program.h"
#include "updates/UpdateController.h"
#include "updates/Version.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace glintar::updates {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(VersionTest, PrecedenceIsThatOfSemanticVersions) {
    const std::vector<std::string> ascending{"0.9.10",
                                             "1.0.0-alpha",
                                             "1.0.0-alpha.1",
                                             "1.0.0-alpha.beta",
                                             "1.0.0-beta",
                                             "1.0.0-beta.2",
                                             "1.0.0-beta.11",
                                             "1.0.0-rc.1",
                                             "1.0.0",
                                             "1.0.2",
                                             "1.0.10",
                                             "1.10.0",
                                             "99999999999999999999.0.0"};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            EXPECT_EQ(*Version::parse(ascending[i]) <=> *Version::parse(ascending[j]), i <=> j);
        }
    }
    EXPECT_EQ(*Version::parse("1.0.0+a"), *Version::parse("1.0.0+b.-1"));
    for (const auto* text : {"", "1", "1.2", "1.2.3.4", "01.2.3", "1.2.3-", "1.2.3-01", "1.2.3-a..b", "1.2.3+",
                             "v1.2.3", "1.2.-3", "1.2.3 "}) {
        EXPECT_FALSE(Version::parse(text)) << text;
    }
}

class UpdatesTest : public testing::Test {
protected:
    void offer(std::string_view version, std::string_view url = "https://g.test/new") {
        machine.http.answer("feed.test", fmt::format(R"({{"releases":[{{"version":"1.0.0"}},7,{{"version":"{}",
            "notes":"New:\n- colours","url":"{}"}},{{"version":"1.2.4-rc.1"}}]}})",
                                                     version, url));
    }
    std::string shown() {
        return desktop.windows.alerts.back()->text.title + "|" + desktop.windows.alerts.back()->text.text;
    }

    platform::VirtualPlatform machine;  // version 1.2.3
    platform::VirtualDesktop desktop{machine.notifications};
    platform::VirtualWorkspace workspace;
    UpdateController updates{machine.platform(), {desktop.windows, workspace, "https://feed.test/releases.json"}};
};

TEST_F(UpdatesTest, TheUserIsToldOfEveryOutcome) {
    const auto ask = [this] {
        updates.checkForUpdates();
        machine.advance(1s);
        return shown();
    };
    EXPECT_THAT(ask(), HasSubstr("could not be found out"));
    offer("1.2.3");
    EXPECT_THAT(ask(), HasSubstr("1.2.3 is the newest version")) << "what comes before a release is not offered";
    machine.http.answer("feed.test", "[]");
    EXPECT_THAT(ask(), HasSubstr("lists no releases"));
    offer("1.10.0", "http://g.test/plain");
    ask();
    EXPECT_THAT(desktop.windows.alerts.back()->text.buttons, ElementsAre("Later"));
    offer("1.10.0");
    EXPECT_EQ(ask(), "Glintar 1.10.0 Is Available|You have version 1.2.3.\n\nNew:\n- colours\n\nhttps://g.test/new");
    desktop.windows.alerts.back()->answer(0);
    EXPECT_THAT(workspace.opened, ElementsAre("https://g.test/new"));
    UpdateController none(machine.platform(), {desktop.windows, workspace, ""});
    none.start();
    none.checkForUpdates();
    EXPECT_THAT(shown(), HasSubstr("does not look for updates"));
}

TEST_F(UpdatesTest, ItLooksOnceADayByItselfAndTellsOfNewsAlone) {
    updates.start();
    machine.advance(2h);
    EXPECT_EQ(machine.http.requests.size(), 1U) << "a failure is not repeated at each look";
    offer("1.2.3");
    machine.advance(24h);
    EXPECT_EQ(machine.http.requests.size(), 2U);
    EXPECT_EQ(desktop.windows.alerts.size(), 0U);
    offer("2.0.0");
    machine.advance(72h);
    EXPECT_EQ(machine.http.requests.size(), 5U);
    EXPECT_EQ(desktop.windows.alerts.size(), 1U);
    machine.preferences.setInteger("lastUpdateCheck", 1LL << 40);
    machine.advance(1h);
    EXPECT_EQ(machine.http.requests.size(), 6U) << "the clock was set back";
}

TEST(ReleaseFeedTest, WhatIsPublishedIsWhatIsRead) {
    const auto release = newerRelease(
        test::outputOf({"bash", "-c",
                        ". " GLINTAR_RELEASE_SCRIPT " && printf '# Changes\n## 1.3.0\n\n- \"A\" \\\\ é\n\n- B\n\n"
                        "## 1.3\n- old\n' | release_notes 1.3.0 | release_feed 1.3.0 https://g.test/1.3.0"}),
        "1.2.9");
    ASSERT_TRUE(release && *release);
    EXPECT_EQ((*release)->version, "1.3.0");
    EXPECT_EQ((*release)->notes, "- \"A\" \\ é\n\n- B");
    EXPECT_EQ((*release)->url, "https://g.test/1.3.0");
}

}  // namespace
}  // namespace glintar::updates
