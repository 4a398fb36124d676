#include "pictures/Sheets.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "support/FolderBundle.h"

#include <QGuiApplication>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string_view>

namespace {

int renew() {
    const glintar::test::FolderBundle bundle;
    const glintar::platform::QtGraphics graphics(bundle);
    for (const auto& sheet : glintar::test::sheets()) {
        const QString path = sheet.referencePath();
        if (!sheet.picture(graphics).save(path)) {
            fmt::print(stderr, "cannot write {}\n", path.toStdString());
            return 1;
        }
        fmt::print("{}\n", path.toStdString());
    }
    return 0;
}

}  // namespace

/// With `--renew` the references are drawn anew, on purpose, and nothing is tested.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("FONTCONFIG_FILE", GLINTAR_PICTURES "/fonts.conf");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    for (const char* name : {"QT_SCALE_FACTOR", "QT_FONT_DPI", "QT_QPA_PLATFORMTHEME", "FREETYPE_PROPERTIES"}) {
        qunsetenv(name);
    }
    const QGuiApplication application(argc, argv);
    return argc > 1 && std::string_view(argv[1]) == "--renew" ? renew() : RUN_ALL_TESTS();
}
