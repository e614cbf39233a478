// Translations: the language of the window. Written in resources/translations (the window's own
// words) and resources/texts (the texts by key, which the engine asks for too).
#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>
#include <QTranslator>

namespace orrinvale {

/// For as long as it lives, the application speaks the first of a person's languages that there is
/// a translation for, and English, in which it is written, where there is none or English comes
/// first. Only what is put into words afterwards is concerned: make it right after the application
/// object, before any other thread. Main thread only.
class Translations final {
public:
    /// `languages` as QLocale names them ("de-AT", "de"), the favourite first.
    explicit Translations(const QStringList& languages = QLocale().uiLanguages());
    ~Translations();
    Translations(const Translations&) = delete;
    Translations& operator=(const Translations&) = delete;

    /// "de"; empty for English.
    [[nodiscard]] const QString& language() const { return m_language; }

private:
    QString m_language;
    QTranslator m_own;
    QTranslator
        m_toolkit;  // Qt's own dialogs and menus; a package of its own, which may be missing
};

}  // namespace orrinvale
