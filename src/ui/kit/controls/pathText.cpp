// pathText: see pathText.h.
#include "ui/kit/controls/pathText.h"

#include <QTextDocument>

namespace orrinvale {

QString onOneLine(QString text) { return text.replace(QLatin1Char('\n'), QChar(0x2424)); }

QString asToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped()) : text;
}

QString shortenedFolder(const QString& folder, const QFontMetrics& metrics, int width) {
    if (metrics.horizontalAdvance(folder) <= width) return folder;
    for (qsizetype slash = folder.indexOf(QLatin1Char('/'), 1); slash >= 0 && slash < folder.size() - 1;
         slash = folder.indexOf(QLatin1Char('/'), slash + 1)) {
        QString shown = QChar(0x2026) + folder.mid(slash);
        if (metrics.horizontalAdvance(shown) <= width) return shown;
    }
    return metrics.elidedText(folder, Qt::ElideLeft, width);
}

}  // namespace orrinvale
