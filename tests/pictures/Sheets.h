#pragma once

#include "platform/Graphics.h"

#include <QImage>
#include <QString>

#include <string>
#include <vector>

namespace glintar::test {

/// Several things that the program draws, side by side on one picture.
struct Sheet {
    std::string name;
    QImage (*draw)(const platform::Graphics&, platform::Appearance, double scale);
    platform::Appearance appearance;
    double scale;

    /// With the artwork and the quotes of the test; `graphics` draws through `QtGraphics`.
    [[nodiscard]] QImage picture(const platform::Graphics& graphics) const { return draw(graphics, appearance, scale); }

    /// Of the picture that it should look like.
    [[nodiscard]] QString referencePath() const {
        return QStringLiteral(GLINTAR_PICTURES "/references/%1.png").arg(QString::fromStdString(name));
    }
};

/// Pills and panels, light and dark; with two pixels to a point only some, since they make large files.
[[nodiscard]] std::vector<Sheet> sheets();

}  // namespace glintar::test
