#include "platform/qtcore/QtPreferences.h"
#include "platform/virtual/VirtualStores.h"
#include "support/TemporaryFolder.h"
#include "support/TestFiles.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

namespace glintar::platform {
namespace {

void fill(Preferences& preferences) {
    preferences.setBoolean("switch", true);
    preferences.setInteger("count", -7);
    preferences.setReal("distance", 16.25);
    preferences.setString("source", "a, \"b\"; ü=%41\\");
    preferences.setString("empty", "");
    preferences.setData("bytes", std::string("\0\xff[{}]\n", 7));
}

void expectFilled(const Preferences& preferences) {
    EXPECT_TRUE(preferences.boolean("switch"));
    EXPECT_EQ(preferences.integer("count"), -7);
    EXPECT_EQ(preferences.real("distance"), 16.25);
    EXPECT_EQ(preferences.string("source"), "a, \"b\"; ü=%41\\");
    EXPECT_EQ(preferences.string("empty"), "") << "empty is not absent";
    EXPECT_EQ(preferences.data("bytes"), std::string("\0\xff[{}]\n", 7));
    EXPECT_FALSE(preferences.boolean("absent"));
    EXPECT_EQ(preferences.integer("absent"), 0);
    EXPECT_EQ(preferences.real("absent"), 0);
    EXPECT_EQ(preferences.string("absent"), std::nullopt);
    EXPECT_EQ(preferences.data("absent"), std::nullopt);
}

class PreferencesTest : public testing::Test {
protected:
    void write(std::string_view text) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }

    test::TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "glintar" / "glintar.conf";
    VirtualConsole console;
};

TEST_F(PreferencesTest, ValuesComeBackAsTheyWereWrittenInMemoryAndFromTheFile) {
    VirtualPreferences memory;
    fill(memory);
    expectFilled(memory);

    QtPreferences writer(file, console);
    fill(writer);
    const QtPreferences reader(file, console);
    expectFilled(reader);
    writer.remove("count");
    EXPECT_EQ(reader.integer("count"), 0) << "each read goes to the file";
    EXPECT_TRUE(console.lines.empty());
}

TEST_F(PreferencesTest, AFileWrittenByHandIsRead) {
    write("[General]\nshowGasFee=true\ngasSource=1\nselectedSourceID=gate\nsavedCoins=@ByteArray([{\\\"a\\\":1}])\n");
    const QtPreferences preferences(file, console);
    EXPECT_TRUE(preferences.boolean("showGasFee"));
    EXPECT_EQ(preferences.integer("gasSource"), 1);
    EXPECT_EQ(preferences.data("savedCoins"), "[{\"a\":1}]");
    EXPECT_EQ(preferences.integer("selectedSourceID"), 0) << "a text is no number";
    for (const auto& [word, isOn] :
         {std::pair{"yes", true}, {"True", true}, {"1", true}, {"No", false}, {"off", false}, {"0", false}}) {
        write(std::string("[General]\nshowGasFee=") + word + "\n");
        EXPECT_EQ(QtPreferences(file, console).boolean("showGasFee"), isOn) << word;
    }
}

TEST_F(PreferencesTest, ADamagedFileIsReadAsFarAsItGoesAndNeverLost) {
    const std::string damaged = "[General]\nshowGasFee=true\nthis line is nonsense\n";
    write(damaged);
    QtPreferences preferences(file, console);
    EXPECT_TRUE(preferences.boolean("showGasFee"));
    EXPECT_TRUE(preferences.boolean("showGasFee"));
    EXPECT_EQ(console.count("damaged"), 1) << "said once";
    preferences.setBoolean("showSparkline", true);
    EXPECT_EQ(test::readFile(file.string() + ".damaged"), damaged);
    EXPECT_TRUE(QtPreferences(file, console).boolean("showSparkline"));
}

TEST_F(PreferencesTest, APlaceThatCannotBeWrittenIsSaid) {
    std::ofstream(folder.path() / "glintar") << "a file where the folder should be";
    QtPreferences preferences(file, console);
    EXPECT_FALSE(preferences.boolean("showGasFee"));
    EXPECT_FALSE(preferences.setBoolean("showGasFee", true));
    EXPECT_EQ(console.count("could not be written"), 1);
    EXPECT_FALSE(preferences.boolean("showGasFee")) << "it reads as it is stored";
    std::filesystem::remove(folder.path() / "glintar");
    EXPECT_TRUE(preferences.setBoolean("showGasFee", true)) << "it may be written again later";
}

TEST_F(PreferencesTest, WhatIsNoPreferenceFileIsNeitherWaitedForNorReadUntilItIsPutRight) {
    write("[General]\ngasSource=1\n");
    QtPreferences preferences(file, console);
    EXPECT_EQ(preferences.integer("gasSource"), 1);
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(preferences.integer("gasSource"), 1);
    EXPECT_EQ(QtPreferences(file, console).integer("gasSource"), 0);
    preferences.watch();
    EXPECT_EQ(console.count("not a regular file"), 2);
    std::filesystem::remove(file);
    write("[General]\ngasSource=2\n" + std::string(1'000'000, '\n'));
    EXPECT_EQ(preferences.integer("gasSource"), 1);
    EXPECT_EQ(console.count("damaged"), 1);
    preferences.setInteger("gasSource", 3);
    EXPECT_EQ(QtPreferences(file, console).integer("gasSource"), 3);
    EXPECT_GT(std::filesystem::file_size(file.string() + ".damaged"), 1'000'000U);
}

TEST_F(PreferencesTest, ALeftOverLockOrAFolderOfItsNameHoldsNobodyUp) {
    write("");
    const std::string lock = file.string() + ".lock";
    QtPreferences preferences(file, console);
    QElapsedTimer passed;
    passed.start();
    std::ofstream(lock).flush();
    std::filesystem::last_write_time(lock, std::filesystem::file_time_type::clock::now() - std::chrono::seconds{1});
    preferences.setInteger("gasSource", 1);
    std::filesystem::create_directory(lock);
    preferences.setInteger("displayMode", 1);
    EXPECT_TRUE(console.lines.empty());
    std::filesystem::create_directories(lock + "/not empty");
    preferences.setInteger("gasSource", 2);
    EXPECT_EQ(console.count("could not be written"), 1);
    EXPECT_LT(passed.elapsed(), 2000);
    EXPECT_EQ(QtPreferences(file, console).integer("gasSource"), 1);
    EXPECT_EQ(QtPreferences(file, console).integer("displayMode"), 1);
}

TEST_F(PreferencesTest, AChangeByAnotherProcessIsNoticedHoweverItIsWritten) {
    write("[General]\ngasSource=0\n");
    std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - std::chrono::hours{1});
    QtPreferences preferences(file, console);
    preferences.watch();
    int changes = 0;
    preferences.onExternalChange = [&] { ++changes; };
    const auto expectChange = [&](const char* how) {
        const int before = changes;
        QElapsedTimer passed;
        passed.start();
        while (changes == before && passed.elapsed() < 5000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 10);
        }
        EXPECT_GT(changes, before) << how;
    };
    write("[General]\ngasSource=1\n");
    expectChange("in place");
    for (const char* how : {"renamed over", "renamed over again"}) {
        std::ofstream(folder.path() / "new") << "[General]\ngasSource=2\n";
        std::filesystem::rename(folder.path() / "new", file);
        expectChange(how);
    }
    EXPECT_EQ(preferences.integer("gasSource"), 2);
    std::filesystem::remove_all(file.parent_path());
    expectChange("removed with its folder");
    EXPECT_EQ(preferences.integer("gasSource"), 0);
    write("[General]\ngasSource=2\n");
    expectChange("made again with its folder");
    EXPECT_EQ(preferences.integer("gasSource"), 2);
    // A writer in several steps, each as long as the last: one notice, and the last step counts.
    const int before = changes;
    for (const char step : {'3', '4', '5'}) {
        write(std::string("[General]\ngasSource=") + step + "\n");
        QCoreApplication::processEvents();
    }
    expectChange("in several steps");
    EXPECT_EQ(changes, before + 1);
    EXPECT_EQ(preferences.integer("gasSource"), 5);
}

}  // namespace
}  // namespace glintar::platform
