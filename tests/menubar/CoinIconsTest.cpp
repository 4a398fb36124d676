// Where the coins' icons come from, and that they come once.

#include "menubar/StatusItemsTest.h"
#include "platform/Desktop.h"

namespace glintar::menubar {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::UnorderedElementsAre;

class CoinIconsTest : public StatusItemsTest {
protected:
    CoinIcons& coinIcons() { return CoinIcons::shared(platform, desktop.graphics); }

    std::string nameOf(const std::string& id) {
        const auto image = coinIcons().icon(id);
        return image ? platform::drawn(image).name : "";
    }

    void download(const std::string& url, const std::string& id, const void* asker = nullptr) {
        coinIcons().download(url, {.apiId = id, .asker = asker, .onArrived = [this, id] { arrived.push_back(id); }});
    }

    std::vector<std::string> arrived;
};

TEST_F(CoinIconsTest, FiveIconsCostFiveRequestsHoweverOftenTheLineIsDrawn) {
    for (const auto* id : {"a", "b", "c", "d", "e"}) {
        add(id, fmt::format("https://icons.test/{}.png", id));
        machine.http.answer(fmt::format("/{}.png", id), fmt::format("image 9x9 {}", id));
    }
    machine.http.latencies = {50ms, 10ms, 40ms, 20ms, 30ms};
    show();
    work.run();
    machine.advance(1ms);
    EXPECT_THAT(icons(), Each("")) << "badges until they come";
    show();
    for (int i = 0; i < 20; ++i) {  // each that comes draws the line again, the others still under way
        work.run();
        machine.advance(5ms);
    }
    settle();
    EXPECT_THAT(icons(), ElementsAre("a", "b", "c", "d", "e"));
    EXPECT_EQ(redisplays, 5);
    EXPECT_EQ(machine.http.asked("icons.test"), 5);
    EXPECT_EQ(machine.http.requests[0].maxBodyBytes, 4 << 20);
    EXPECT_EQ(drawingsToShow(), 0);
    EXPECT_EQ(machine.files.contents.at(kFolder / "a.png"), "image 9x9 a");
}

TEST_F(CoinIconsTest, AFailedDownloadIsTriedAgainWithTheNextQuote) {
    add("a", "https://icons.test/a.png");
    machine.http.failOnce("icons.test", {platform::HttpError::Kind::Timeout, "late"});
    machine.http.answerOnce("icons.test", "<html>");
    machine.http.answer("icons.test", "image 9x9 a");
    for (const int asked : {1, 1, 2, 2}) {
        quotes["a"].arrival.instant = platform::Instant(asked * 1s);
        EXPECT_EQ(drawingsToShow(), 1) << "a badge is not kept";
        EXPECT_EQ(machine.http.asked("icons.test"), asked);
        EXPECT_THAT(icons(), ElementsAre(""));
    }
    quotes["a"].arrival.instant += 2s;
    show();
    settle();
    EXPECT_THAT(icons(), ElementsAre("a"));
    EXPECT_EQ(redisplays, 1);
}

TEST_F(CoinIconsTest, AnIconThatArrivesInAnotherLookIsShownInIt) {
    add("a", "https://icons.test/a.png");
    machine.http.answer("icons.test", "image 9x9 a");
    show();
    work.run();
    desktop.events.setAppearance(platform::Appearance::Dark);
    settle();
    EXPECT_THAT(icons(), ElementsAre("a"));
    EXPECT_EQ(machine.http.asked("icons.test"), 1);
}

TEST_F(CoinIconsTest, AnIconOnTheDiskNeedsNoNetworkAndABrokenOneIsReplaced) {
    add("a", "https://icons.test/a.png");
    saveIconOf("a");
    show();
    settle();
    EXPECT_THAT(icons(), ElementsAre("saved"));
    EXPECT_THAT(machine.http.requests, IsEmpty());
    machine.files.contents[kFolder / "a.png"] = "image";
    machine.http.answer("icons.test", "image 9x9 a");
    EXPECT_EQ(nameOf("a"), "") << "not kept in memory";
    quotes["a"].price = 2;
    show();
    settle();
    EXPECT_THAT(icons(), ElementsAre("a"));
    EXPECT_EQ(machine.files.contents.at(kFolder / "a.png"), "image 9x9 a");
}

TEST_F(CoinIconsTest, AnAddressIsAskedOnceWhoeverWantsIt) {
    machine.http.answer("icons.test", "image 9x9 shared");
    int other = 0;
    download("https://icons.test/x", "a");
    download("https://icons.test/x", "b");
    download("https://icons.test/x", "a");
    download("https://icons.test/x", "a", &other);
    settle();
    EXPECT_EQ(machine.http.asked("icons.test"), 1);
    EXPECT_EQ(nameOf("a") + nameOf("b"), "sharedshared");
    EXPECT_THAT(arrived, UnorderedElementsAre("a", "b", "a")) << "each asker once for each coin";
    download("https://icons.test/x", "a");
    download("https://icons.test/y", "c");
    EXPECT_EQ(machine.http.asked("icons.test"), 2) << "the first is there by now";
}

TEST_F(CoinIconsTest, OnlyWebAddressesAreAsked) {
    for (const auto* url : {"", "file:///etc/passwd", "ftp://icons.test/x", "icons.test/x", "https://"}) {
        download(url, "a");
    }
    settle();
    EXPECT_THAT(machine.http.requests, IsEmpty());
}

TEST_F(CoinIconsTest, NoIdentifierReachesOutOfTheFolder) {
    machine.http.answer("icons.test", "image 9x9 fresh");
    int number = 0;
    for (const std::string& id : {std::string("../../x"), std::string("a/b"), std::string("/etc/x"), std::string(),
                                  std::string("."), std::string(".."), std::string(241, 'x'), std::string("a\0b", 3)}) {
        const auto planted = kFolder / (id + ".png");
        machine.files.contents = {{planted, "image 9x9 planted"}};
        EXPECT_EQ(nameOf(id), "") << id;
        download(fmt::format("https://icons.test/{}", ++number), id);
        settle();
        EXPECT_EQ(nameOf(id), "fresh") << id;
        EXPECT_THAT(machine.files.contents, ElementsAre(testing::Pair(planted, "image 9x9 planted"))) << id;
    }
    for (const std::string& id : {std::string("ビットコイン..\\x y"), std::string(240, 'x')}) {
        machine.files.contents.clear();
        download(fmt::format("https://icons.test/{}", ++number), id);
        settle();
        EXPECT_THAT(machine.files.contents, ElementsAre(Key(kFolder / (id + ".png"))));
    }
}

TEST_F(CoinIconsTest, WithoutAFolderIconsLiveInMemory) {
    machine.files.writeFailure = "Read-only file system";
    add("a", "https://icons.test/a.png");
    machine.http.answer("icons.test", "image 9x9 a");
    show();
    settle();
    EXPECT_THAT(icons(), ElementsAre("a"));

    machine.registry.clear();
    machine.directories.cachesFolder.reset();
    items.reset();
    desktop.statusBar.items.clear();
    make();
    show();
    settle();
    EXPECT_THAT(icons(), ElementsAre("a"));
    EXPECT_EQ(machine.http.asked("icons.test"), 2);
}

TEST_F(CoinIconsTest, AnIconTooLargeToKeepIsNotAskedForWithoutEnd) {
    machine.files.writeFailure = "No space left on device";
    add("a", "https://icons.test/a.png");
    machine.http.answer("icons.test", "image 2000x2000 a");
    show();
    settle();
    EXPECT_EQ(machine.http.asked("icons.test"), 1);
}

TEST_F(CoinIconsTest, AMegabyteOfIconsIsKeptInMemory) {
    machine.files.writeFailure = "No space left on device";
    for (const std::string id : {"a", "b", "c"}) {
        machine.http.answer("icons.test/" + id, "image 500x250 " + id);  // 500,000 bytes
        download("https://icons.test/" + id, id);
        settle();
    }
    EXPECT_EQ(nameOf("a") + nameOf("b") + nameOf("c"), "bc");
}

TEST(ImageCacheTest, WhatWasNotUsedForLongestMakesRoom) {
    const auto image = std::make_shared<platform::VirtualImage>("x", platform::Size{16, 16});  // 1024 bytes
    ImageCache cache(4096);
    EXPECT_TRUE(cache.insert("a", image) && cache.insert("b", image) && cache.insert("c", image));
    EXPECT_TRUE(cache.find("a"));
    EXPECT_TRUE(cache.insert("d", image));
    EXPECT_FALSE(cache.find("b"));
    EXPECT_TRUE(cache.find("a") && cache.find("c") && cache.find("d"));
    EXPECT_TRUE(cache.insert("a", image)) << "in place of the old one";
    EXPECT_TRUE(cache.find("c") && cache.find("d"));
    EXPECT_FALSE(cache.insert("e", std::make_shared<platform::VirtualImage>("x", platform::Size{64, 64})));
    cache.remove("c");
    EXPECT_FALSE(cache.find("c"));
}

}  // namespace
}  // namespace glintar::menubar
