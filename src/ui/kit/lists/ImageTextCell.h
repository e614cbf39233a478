// ImageTextCell: how long a name gets that a cell shows beside an icon and over a second line.
// RowDelegate draws the cell.
#pragma once

#include <QString>

namespace orrinvale {

struct ImageTextCell {
    std::int32_t cellLength = 0;

    /// The first line: 45 letters with a length of 0, 30 with any other, and what is longer ends in
    /// three points.
    [[nodiscard]] QString primaryText(const QString& text) const {
        const qsizetype most = cellLength == 0 ? 45 : 30;
        return text.size() <= most ? text : cutText(text, most);
    }

    /// The first so many letters and three points; a letter that takes two places stays whole or
    /// goes.
    [[nodiscard]] static QString cutText(const QString& text, qsizetype letters) {
        const bool isWithin = text.at(letters - 1).isHighSurrogate();
        return text.left(isWithin ? letters - 1 : letters) + QStringLiteral("...");
    }
};

}  // namespace orrinvale
