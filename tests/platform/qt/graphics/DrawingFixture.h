#pragma once

#include "platform/Directories.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/graphics/QtImage.h"
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

/// Shipped files in a folder of the test's own.
class FolderBundle final : public Bundle {
public:
    FolderBundle() {
        for (const char* folder : {"images/inner", "symbols"}) {
            std::filesystem::create_directories(folder_.path() / folder);
        }
        // The left half is black.
        const std::string half = R"(<svg xmlns="http://www.w3.org/2000/svg" width="64" height="64">)"
                                 R"(<path d="M0 0h32v64H0z"/></svg>)";
        for (const char* name : {"images/half", "images/.hidden", "images/inner/half", "secret", "symbols/half"}) {
            std::ofstream(folder_.path() / fmt::format("{}.svg", name)) << half;
        }
        std::ofstream(folder_.path() / "images/broken.svg") << half.substr(0, 40);
        std::ofstream(folder_.path() / "images/text.svg") << "no drawing";
    }
    std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) const override {
        auto path = folder_.path() / fmt::format("{}.{}", name, extension);
        return std::filesystem::exists(path) ? std::optional(path) : std::nullopt;
    }
    std::string version() const override { return {}; }
    std::string configServer() const override { return {}; }

private:
    test::TemporaryFolder folder_;
};

class DrawingTest : public testing::Test {
protected:
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

    FolderBundle bundle;
    QtGraphics graphics{bundle};
};

}  // namespace glintar::platform
