#pragma once

#include "platform/Graphics.h"

#include <QImage>

namespace glintar::platform {

/// The pixels, so many to a point, with their shadow under them. It fades out at twice its radius.
[[nodiscard]] QImage withShadow(const QImage& pixels, double scale, const Shadow& shadow);

}  // namespace glintar::platform
