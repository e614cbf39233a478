// The first language with texts of our own decides; the toolkit's texts follow it where they are
// installed.
#include "ui/kit/look/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>

#include "engine/text/Localized.h"

namespace orrinvale {
namespace {

// As seen from the programs, in the build tree too.
QString ownFolder() {
    return QCoreApplication::applicationDirPath() +
           QStringLiteral("/../share/orrinvale/translations");
}

}  // namespace

Translations::Translations(const QStringList& languages) {
    for (const QString& each : languages) {
        const QString language = each.section(QLatin1Char('-'), 0, 0);
        if (language == QLatin1String("en") || language == QLatin1String("C")) return;
        if (!m_own.load(QStringLiteral("orrinvale_") + language, ownFolder())) continue;
        m_language = language;
        break;
    }
    if (m_language.isEmpty()) return;
    QCoreApplication::installTranslator(&m_own);
    setTextLanguage(m_language.toStdString());
    if (m_toolkit.load(QStringLiteral("qtbase_") + m_language,
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&m_toolkit);
}

Translations::~Translations() {
    if (!m_language.isEmpty()) setTextLanguage("en");
}

}  // namespace orrinvale
