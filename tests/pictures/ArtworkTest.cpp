#include "config/AppConfig.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/graphics/QtImage.h"
#include "support/FolderBundle.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <vector>

namespace glintar::test {

TEST(ArtworkTest, EachSourceAndSymbolHasASharpPictureInAnySize) {
    const FolderBundle bundle;
    const platform::QtGraphics graphics(bundle);
    const auto config = config::decodeAppConfig(readFile(shippedResource("api_endpoints.json")));
    ASSERT_TRUE(config && config->gasConfigs);

    std::map<std::string, platform::ImagePtr> pictures;
    std::vector<std::string> images{"AppIcon", "Glintar"};
    std::ranges::transform(config->sources, std::back_inserter(images), &config::SourceConfig::id);
    std::ranges::transform(*config->gasConfigs, std::back_inserter(images), &config::GasConfig::id);
    for (const auto& name : images) {
        pictures[name] = graphics.image(name);
    }
    for (const auto* name : {"arrow.clockwise.circle", "arrow.down", "bitcoinsign.circle.fill", "checkmark.circle.fill",
                             "envelope.fill", "fuelpump.fill", "globe", "key.fill", "network", "plus.circle.fill",
                             "server.rack", "star", "text.page", "xmark.circle.fill"}) {
        pictures[name] = graphics.symbol(name, 13, {});
    }
    std::set<std::vector<uchar>> seen;
    for (const auto& [name, picture] : pictures) {
        ASSERT_TRUE(picture) << name;
        for (const double side : {8, 16, 64}) {
            const QImage pixels = platform::pixelsAt(*picture, fittedSize(picture->size(), {side, side}), 1);
            int visible = 0;
            int solid = 0;
            for (int y = 0; y < pixels.height(); ++y) {
                for (int x = 0; x < pixels.width(); ++x) {
                    const int alpha = qAlpha(pixels.pixel(x, y));
                    visible += alpha > 0x20 ? 1 : 0;
                    solid += alpha > 0x88 ? 1 : 0;
                }
            }
            EXPECT_GT(solid, visible / 10) << name << " in " << side << " is blurred";
            EXPECT_TRUE(seen.insert({pixels.constBits(), pixels.constBits() + pixels.sizeInBytes()}).second)
                << name << " in " << side << " looks like another";
        }
    }
}

}  // namespace glintar::test
