// Only the suffix counts, and the desktop is asked once for each.
#include "ui/shell/FileIcons.h"

#include <QMimeDatabase>

#include "engine/duplicates/FileKind.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

// The sign that the list of types has for such files; a plain sheet for the rest.
QString pictureOfKind(const QString& suffix) {
    switch (kindOfExtension(suffix.toStdString())) {
        case FileKind::Documents: return QStringLiteral("ic_doc");
        case FileKind::Music: return QStringLiteral("ic_music");
        case FileKind::Videos: return QStringLiteral("ic_video");
        case FileKind::Archives: return QStringLiteral("ic_archive");
        case FileKind::Pictures: return QStringLiteral("ic_pic");
        case FileKind::Others: break;
    }
    return QStringLiteral("file1");
}

QIcon themed(const QMimeType& type) {
    QIcon icon = QIcon::fromTheme(type.iconName());
    if (icon.isNull()) icon = QIcon::fromTheme(type.genericIconName());
    return icon;
}

}  // namespace

QIcon FileIcons::icon(const IconRequest& request) {
    QString name = QString::fromStdString(request.text);
    if (request.kind == IconRequest::FileType) name = QStringLiteral("x.") + name;
    return iconOfName(name.section(QLatin1Char('/'), -1));
}

QIcon FileIcons::iconOfName(const QString& name) {
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QString suffix = dot < 0 ? QString() : name.mid(dot + 1).toLower();
    const auto known = m_bySuffix.constFind(suffix);
    if (known != m_bySuffix.constEnd()) return *known;
    QIcon icon;
    if (suffix == QLatin1String("app")) {
        icon = QIcon::fromTheme(QStringLiteral("application-x-executable"));
        if (icon.isNull()) icon = picture(QStringLiteral("ic_app"));
    } else if (!suffix.isEmpty()) {
        static const QMimeDatabase types;
        icon = themed(
            types.mimeTypeForFile(QStringLiteral("x.") + suffix, QMimeDatabase::MatchExtension));
    }
    if (icon.isNull()) icon = picture(pictureOfKind(suffix));
    m_bySuffix.insert(suffix, icon);
    return icon;
}

}  // namespace orrinvale
