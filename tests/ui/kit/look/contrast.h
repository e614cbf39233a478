// contrast: how well two colours can be told apart, as the Web Content Accessibility Guidelines 2.1
// measure it.
#pragma once

#include <QColor>
#include <algorithm>
#include <cmath>

namespace orrinvale::testing {

inline double luminance(const QColor& color) {
    const auto linear = [](int byte) {
        const double value = byte / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red()) + 0.7152 * linear(color.green()) +
           0.0722 * linear(color.blue());
}

/// From 1, the same, to 21, black and white.
inline double contrast(const QColor& one, const QColor& other) {
    const auto [low, high] = std::minmax({luminance(one), luminance(other)});
    return (high + 0.05) / (low + 0.05);
}

}  // namespace orrinvale::testing
