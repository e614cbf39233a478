#include "ui/kit/look/getColor.h"

#include <algorithm>

namespace orrinvale {

QColor getColor(float red, float green, float blue, float alpha) {
    // In double precision, so that 255 is exactly 1.
    const auto unit = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(
        unit(static_cast<double>(red) / 255.0), unit(static_cast<double>(green) / 255.0),
        unit(static_cast<double>(blue) / 255.0), unit(static_cast<double>(alpha)));
}

}  // namespace orrinvale
