#pragma once

#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/graphics/QtImage.h"
#include "support/FolderBundle.h"
#include "support/TemporaryFolder.h"

#include <QColor>
#include <QImage>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

namespace glintar::platform {

inline constexpr Color kRed{1, 0, 0, 1};
inline constexpr Color kBlack{0, 0, 0, 1};

class DrawingTest : public testing::Test {
protected:
    /// Ships some pictures of its own.
    DrawingTest() {
        for (const char* name : {"images/inner", "symbols"}) {
            std::filesystem::create_directories(folder.path() / name);
        }
        // The left half is black.
        const std::string half = R"(<svg xmlns="http://www.w3.org/2000/svg" width="64" height="64">)"
                                 R"(<path d="M0 0h32v64H0z"/></svg>)";
        for (const char* name : {"images/half", "images/.hidden", "images/inner/half", "secret", "symbols/half"}) {
            std::ofstream(folder.path() / fmt::format("{}.svg", name)) << half;
        }
        std::ofstream(folder.path() / "images/broken.svg") << half.substr(0, 40);
        std::ofstream(folder.path() / "images/text.svg") << "no drawing";
    }
    QImage drawn(Size size, double scale, const std::function<void(Canvas&)>& paint) const {
        return pixelsAt(*graphics.draw(size, scale, paint), size, scale);
    }
    /// What is not transparent; empty when nothing is.
    static QRect ink(const QImage& image) {
        QRect found;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y).alpha() > 127) {
                    found |= QRect(x, y, 1, 1);
                }
            }
        }
        return found;
    }

    test::TemporaryFolder folder;
    test::FolderBundle bundle{folder.path()};
    QtGraphics graphics{bundle};
};

}  // namespace glintar::platform
