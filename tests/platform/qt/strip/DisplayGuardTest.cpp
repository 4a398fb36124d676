#include "platform/qt/DisplayGuard.h"
#include "support/Display.h"
#include "support/Program.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace glintar::test {

namespace {

using testing::HasSubstr;

TEST(DisplayGuard, EndsTheProgramInOrderWhenTheDisplayGoesAway) {
    Display display("1280x800x24", Display::Bus::None);
    Program program({"/proc/self/exe", "--wait-for-the-end"}, {});
    ASSERT_TRUE(program.waitForOutput("up\n")) << program.errors();
    EXPECT_FALSE(std::filesystem::exists(display.home() / ".dbus")) << "a message bus was started, which outlives us";
    display.stop();
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.output(), "up\nsaved\n");
    EXPECT_EQ(program.errors(), "strip: the display has gone away\n");
}

TEST(DisplayGuard, TellsThatThereIsNoDisplayInsteadOfEndingWithACoreDump) {
    Display display;
    EXPECT_EQ(platform::displayProblem(), std::nullopt);
    display.stop();
    EXPECT_THAT(platform::displayProblem().value(), HasSubstr(display.name() + " cannot be reached"));
    ::unsetenv("DISPLAY");
    EXPECT_THAT(platform::displayProblem().value(), HasSubstr("$DISPLAY"));
}

}  // namespace

}  // namespace glintar::test
