// getColor: a colour from the components that designers write down.
#pragma once

#include <QColor>

namespace orrinvale {

/// Red, green and blue from 0 to 255, alpha from 0 to 1. What lies outside is brought to the nearer
/// end.
[[nodiscard]] QColor getColor(float red, float green, float blue, float alpha);

}  // namespace orrinvale
