#include "pictures/ChangedGraphics.h"
#include "pictures/PictureDifference.h"
#include "pictures/Sheets.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "support/FolderBundle.h"

#include <QCoreApplication>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

namespace glintar::test {

namespace {

using Fault = ChangedGraphics::Fault;

std::string figures(const PictureDifference& difference) {
    return fmt::format("change {:.2f}, shift {:.2f}, most at {},{}", difference.change, difference.shift,
                       difference.tile.x(), difference.tile.y());
}

class Pictures : public testing::TestWithParam<Sheet> {
protected:
    FolderBundle bundle;
    platform::QtGraphics graphics{bundle};
    QImage right = GetParam().picture(graphics);
};

TEST_P(Pictures, LookAsTheirReference) {
    const auto& [name, draw, appearance, scale] = GetParam();
    const QString path = GetParam().referencePath();
    const QImage reference = QImage(path).convertToFormat(QImage::Format_RGB32);
    const bool isOneSize = reference.size() == right.size();
    const auto difference = isOneSize ? differenceOf(reference, right) : PictureDifference{};
    if (isOneSize && !difference.isNoticeable()) {
        return;
    }
    const QString beside = QCoreApplication::applicationDirPath() + '/' + QString::fromStdString(name);
    right.save(beside + "-actual.png");
    std::string report =
        fmt::format("reference  {}\nactual     {}-actual.png\n", path.toStdString(), beside.toStdString());
    if (isOneSize) {
        report += figures(difference);
    } else {
        report += fmt::format("{} by {} pixels instead of {} by {}", right.width(), right.height(), reference.width(),
                              reference.height());
    }
    FAIL() << name << " looks different; if it should, run ./test pictures renew\n" << report;
}

// What the comparison is worth: each of these would be noticed wherever on the sheet it happened.
TEST_P(Pictures, AnyFaultIsNoticed) {
    for (const auto& [fault, name] : {std::pair(Fault::TextRight, "text one pixel to the right"),
                                      {Fault::TextUp, "text one pixel up"},
                                      {Fault::Color, "colour a tenth off"},
                                      {Fault::NoSparkline, "sparkline missing"}}) {
        for (std::size_t which = 0;; ++which) {
            const ChangedGraphics changed(graphics, fault, which, GetParam().scale);
            const auto difference = differenceOf(right, GetParam().picture(changed));
            if (!changed.hasHappened()) {
                EXPECT_GT(which, 0U) << "never: " << name;
                break;
            }
            EXPECT_TRUE(difference.isNoticeable()) << name << ", number " << which << ": " << figures(difference);
        }
    }
}

TEST_P(Pictures, NoiseIsNotNoticed) {
    QImage noisy = right;
    std::mt19937 random(1);
    const auto noise = [&](int level) { return std::clamp(level + (random() % 2 == 0 ? 3 : -3), 0, 255); };
    for (int y = 0; y < noisy.height(); ++y) {
        for (int x = 0; x < noisy.width(); ++x) {
            const QRgb pixel = right.pixel(x, y);
            noisy.setPixel(x, y, qRgb(noise(qRed(pixel)), noise(qGreen(pixel)), noise(qBlue(pixel))));
        }
    }
    const auto difference = differenceOf(right, noisy);
    EXPECT_GT(difference.change, 2);
    EXPECT_FALSE(difference.isNoticeable()) << figures(difference);
}

INSTANTIATE_TEST_SUITE_P(Sheets, Pictures, testing::ValuesIn(sheets()), [](const testing::TestParamInfo<Sheet>& sheet) {
    std::string name = sheet.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
});

}  // namespace

}  // namespace glintar::test
