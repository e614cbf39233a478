// A date with two digits in every place stands for all dates.
#include "ui/kit/lists/columnWidths.h"

#include <QDateTime>
#include <QFontMetrics>
#include <QLocale>
#include <algorithm>

#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {

int dateColumnWidth() {
    const QDateTime wide(QDate(2028, 12, 28), QTime(20, 58));
    QString text = QLocale().toString(wide, QLocale::ShortFormat);
    // Digits differ in width; the date that is shown may have the widest throughout.
    const QFontMetrics metrics(Theme::shared().font(Theme::Text::Body));
    const auto narrower = [&](QChar a, QChar b) {
        return metrics.horizontalAdvance(a) < metrics.horizontalAdvance(b);
    };
    const QString digits = QStringLiteral("0123456789");
    const QChar widest = *std::max_element(digits.begin(), digits.end(), narrower);
    for (QChar& letter : text)
        if (letter.isDigit()) letter = widest;
    return metrics.horizontalAdvance(text) + 2 * FlatHeader::textMargin + 1;
}

int wordsColumnWidth(const QStringList& words) {
    const QFontMetrics metrics(Theme::shared().font(Theme::Text::Body));
    int widest = 0;
    for (const QString& each : words) widest = std::max(widest, metrics.horizontalAdvance(each));
    return widest + 2 * FlatHeader::textMargin + 1;
}

}  // namespace orrinvale
