#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "menubar/CoinPill.h"
#include "platform/posix/InstalledBundle.h"
#include "platform/qt/graphics/QtGraphics.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QThreadPool>
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdlib>

namespace glintar::bench {

namespace {

constexpr int kRounds = 100;
constexpr int kDrawings = 20;  // a round
constexpr std::array<const char*, 5> kNames{"BTC", "ETH", "SOL", "XRP", "DOGE"};
constexpr std::array<const char*, 5> kPrices{"64012.55", "3401.20", "151.25", "0.5123", "0.1234"};

presenter::CoinPart coinPart(std::size_t i) {
    presenter::CoinPart part;
    part.coin = {.id = "", .displayName = kNames.at(i), .apiId = kNames.at(i), .referencePrice = {}};
    part.quote.change24h = 1.2;
    part.quote.sparkline.emplace();
    for (int point = 0; point < 24; ++point) {
        part.quote.sparkline->push_back(100 + 10 * std::sin(point / 3.0));
    }
    part.price = kPrices.at(i);
    part.change = "+1.20%";
    part.showsSparkline = true;
    return part;
}

QImage iconPicture() {
    QImage icon(64, 64, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setBrush(Qt::darkYellow);
    painter.drawEllipse(icon.rect());
    return icon;
}

std::string pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

/// The strokes of one pill by Qt's painter alone, at places found out beforehand.
class BarePill {
public:
    BarePill(const presenter::CoinPart& part, const QImage& icon, int ratio)
        : icon_(icon), price_(part.price.c_str()), change_(part.change->c_str()), ratio_(ratio) {
        for (auto [font, pixels] : {std::pair(&priceFont_, 14), std::pair(&changeFont_, 13)}) {
            font->setPixelSize(pixels);
            font->setKerning(false);
        }
        priceFont_.setBold(true);
        changeX_ = 36 + QFontMetricsF(priceFont_).horizontalAdvance(price_);
        const double sparklineX = changeX_ + QFontMetricsF(changeFont_).horizontalAdvance(change_) + 3;
        for (std::size_t i = 0; i < part.quote.sparkline->size(); ++i) {
            line_ << QPointF(sparklineX + static_cast<double>(i) * 36 / 23,
                             20 - ((*part.quote.sparkline)[i] - 90) * 0.7);
        }
        width_ = static_cast<int>(std::ceil(sparklineX + 42));
    }

    [[nodiscard]] QImage draw() const {
        QImage pixels(width_ * ratio_, 24 * ratio_, QImage::Format_ARGB32_Premultiplied);
        pixels.fill(Qt::transparent);
        QPainter painter(&pixels);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(ratio_, ratio_);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(230, 230, 230));
        painter.drawRoundedRect(QRectF(0.5, 2, width_ - 1, 22), 4, 4);
        painter.setPen(QColor(153, 153, 153));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(0.5, 2, width_ - 1, 22), 4, 4);
        painter.drawImage(QRectF(6, 4, 18, 18), icon_);
        painter.setPen(Qt::black);
        painter.setFont(priceFont_);
        painter.drawText(QPointF(30, 17), price_);
        painter.setPen(QColor(0, 128, 0));
        painter.setFont(changeFont_);
        painter.drawText(QPointF(changeX_, 17), change_);
        painter.setPen(QPen(QColor(0, 128, 0, 204), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(line_);
        painter.end();
        return pixels;
    }

private:
    QImage icon_;
    QString price_, change_;
    QFont priceFont_, changeFont_;
    QPolygonF line_;
    double changeX_ = 0;
    int width_ = 0;
    int ratio_ = 1;
};

}  // namespace

void benchPills() {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    int count = 1;
    char name[] = "glintar-bench";
    char* words[] = {name, nullptr};
    const QGuiApplication application(count, words);
    QThreadPool::globalInstance()->setMaxThreadCount(1);  // as the program does
    const platform::InstalledBundle bundle{{}};
    const platform::QtGraphics graphics(bundle);
    const QImage picture = iconPicture();
    const auto icon = graphics.decode(pngOf(picture));
    if (!icon) {
        std::abort();
    }
    for (const int ratio : {1, 2}) {
        for (const std::size_t pills : {std::size_t{1}, kNames.size()}) {
            std::vector<presenter::CoinPart> parts;
            std::vector<BarePill> bare;
            for (std::size_t i = 0; i < pills; ++i) {
                parts.push_back(coinPart(i));
                bare.emplace_back(parts.back(), picture, ratio);
            }
            const menubar::Look look{.scale = static_cast<double>(ratio)};
            const auto ours = [&] {
                for (int i = 0; i < kDrawings; ++i) {
                    for (const auto& part : parts) {
                        std::ignore = menubar::renderCoinPill(graphics, part, *icon, look);
                    }
                }
            };
            const auto floor = [&] {
                for (int i = 0; i < kDrawings; ++i) {
                    for (const auto& pill : bare) {
                        std::ignore = pill.draw();
                    }
                }
            };
            const auto [oursTime, floorTime] = compare(kRounds, ours, floor);
            printRow({fmt::format("{} at ratio {}", pills == 1 ? "one pill" : "five pills", ratio),
                      oursTime * 1e6 / kDrawings, floorTime * 1e6 / kDrawings, std::nullopt, "us", "bare strokes"});
        }
    }
}

}  // namespace glintar::bench
