#pragma once

#include "arbiter/DashboardStyle.h"

#include <QPixmap>

#include <map>
#include <string>

class QWidget;

namespace glintar::arbiter {

/// The small pictures of the dashboard, drawn once for each look: every price that arrives lays the rows out anew.
class DashboardPictures {
public:
    static constexpr int kIcon = 16;
    static constexpr int kArrow = 10;
    static constexpr int kCoin = 20;

    explicit DashboardPictures(const platform::Graphics& graphics) : graphics_(graphics) {}

    /// Draws anew from now on, for the widget's screen.
    void restyle(const DashboardStyle& style, const QWidget& widget);

    /// Of a source, with round corners.
    [[nodiscard]] const QPixmap& source(const std::string& iconName);
    [[nodiscard]] const QPixmap& arrow() const { return arrow_; }
    /// Of a coin that has none of its own.
    [[nodiscard]] const QPixmap& coin() const { return coin_; }

private:
    const platform::Graphics& graphics_;
    const QWidget* widget_ = nullptr;
    platform::Color neutral_;
    QPixmap arrow_;
    QPixmap coin_;
    std::map<std::string, QPixmap> sources_;
};

}  // namespace glintar::arbiter
