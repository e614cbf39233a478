// Cuts are tried from the mildest on and measured in pixels; the first that fits is taken.
#include "ui/kit/controls/pathText.h"

#include <QStringList>
#include <QTextDocument>

namespace orrinvale {
namespace {

constexpr QLatin1Char slash('/');
constexpr QChar dots(0x2026);

// "c/d/" of the third name on.
QString from(const QStringList& names, qsizetype first) {
    return names.mid(first).join(slash) + slash;
}

QString lastOnly(const QString& folder) {
    const qsizetype cut = folder.lastIndexOf(slash, -2);
    return cut <= 0 ? folder : dots + folder.mid(cut);
}

QString cutInside(const QString& name, const QFontMetrics& metrics, int width) {
    const QString before = QString(dots) + slash;
    const int around = metrics.horizontalAdvance(before) + metrics.horizontalAdvance(slash);
    const QString left = metrics.elidedText(name, Qt::ElideMiddle, width - around);
    return left.isEmpty() ? QString() : before + left + slash;
}

bool turnsText(char16_t code) {
    return code == 0x061C || code == 0x200E || code == 0x200F ||
           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

// Unicode has a picture for each control character; none for the marks of direction.
QChar signOf(QChar letter) {
    const char16_t code = letter.unicode();
    if (code == '\n' || code == 0x0085 || code == 0x2028 || code == 0x2029) return QChar(0x2424);
    if (code < 0x20) return QChar(static_cast<char16_t>(0x2400 + code));
    if (code == 0x7F) return QChar(0x2421);
    return turnsText(code) ? QChar(QChar::ReplacementCharacter) : letter;
}

}  // namespace

QString onOneLine(QString text) {
    for (QChar& each : text) each = signOf(each);
    return text;
}

QString asToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped())
                                     : text;
}

PathParts pathParts(const QString& path) {
    const qsizetype cut = path.lastIndexOf(slash) + 1;
    return {path.left(cut), path.mid(cut)};
}

QString shortenedFolder(const QString& folder, const QString& shared, const QFontMetrics& metrics,
                        int width) {
    const auto fits = [&](const QString& text) { return metrics.horizontalAdvance(text) <= width; };
    if (fits(folder)) return folder;
    const QStringList names = folder.split(slash, Qt::SkipEmptyParts);
    if (names.isEmpty()) return folder;
    const qsizetype last = names.size() - 1;
    const qsizetype first =
        shared.isEmpty() ? 0 : qMin(shared.split(slash, Qt::SkipEmptyParts).size(), last);
    const QString start = first > 0 ? QString(dots) + slash : QString(slash);
    if (QString tail = start + from(names, first); fits(tail)) return tail;
    for (qsizetype next = first + 2; next <= last; ++next)
        if (QString cut = start + names[first] + slash + dots + slash + from(names, next);
            fits(cut))
            return cut;
    const QString end = lastOnly(folder);
    return fits(end) ? end : cutInside(names[last], metrics, width);
}

PathParts shortenedPath(const QString& path, const QString& shared, const QFontMetrics& metrics,
                        int width) {
    const PathParts whole = pathParts(path);
    const int nameWidth = metrics.horizontalAdvance(whole.name);
    const int leastFolder = qMin(metrics.horizontalAdvance(whole.folder),
                                 metrics.horizontalAdvance(lastOnly(whole.folder)));
    // Of what lies in the folder that all share the name tells everything.
    if (whole.folder == shared && nameWidth > width - leastFolder)
        return {{}, metrics.elidedText(whole.name, Qt::ElideMiddle, width)};
    const int leastName =
        metrics.horizontalAdvance(whole.name.left(2) + dots + whole.name.right(4));
    const int forName = qMin(nameWidth, qMax(width - leastFolder, leastName));
    PathParts shown{shortenedFolder(whole.folder, shared, metrics, width - forName), {}};
    shown.name = metrics.elidedText(whole.name, Qt::ElideMiddle,
                                    width - metrics.horizontalAdvance(shown.folder));
    return shown;
}

}  // namespace orrinvale
