// Which language the window speaks, and how failures and numbers read in it.
#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include "engine/diskusage/history/changeWords.h"
#include "engine/text/Localized.h"
#include "engine/volumes/VolumesManager.h"
#include "support/test.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/look/Translations.h"
#include "ui/support/PageWindow.h"

namespace orrinvale {
namespace {

std::string stopText() {
    return QCoreApplication::translate("SameFileDeleteViews", "Stop").toStdString();
}

const QStringList german{QStringLiteral("de")};

TEST(Translations, TheFirstLanguageThatIsThereCounts) {
    if (Translations(german).language().isEmpty()) GTEST_SKIP() << "no lrelease here";
    const struct {
        const char* languages;
        const char* language;
    } cases[] = {{"de", "de"},     {"de-DE de-Latn-DE de", "de"},
                 {"de-AT", "de"},  {"fr-FR fr de", "de"},
                 {"en-GB de", ""}, {"fr de-DE en", "de"},
                 {"fr en de", ""}, {"C", ""},
                 {"", ""},         {"fr", ""}};
    for (const auto& each : cases) {
        {
            const Translations translations(
                QString::fromLatin1(each.languages).split(QLatin1Char(' ')));
            EXPECT_EQ(translations.language().toStdString(), each.language) << each.languages;
            const bool isGerman = *each.language != '\0';
            EXPECT_EQ(stopText(), isGerman ? "Stoppen" : "Stop") << each.languages;
            EXPECT_EQ(getLocalizedString("TITLE_CLEAN_TRASH"), isGerman ? "Papierkorb" : "Trash")
                << each.languages;
        }
        EXPECT_EQ(stopText(), "Stop") << "after " << each.languages;
        EXPECT_EQ(getLocalizedString("TITLE_CLEAN_TRASH"), "Trash") << "after " << each.languages;
    }
}

TEST(Translations, FailuresAndNumbersReadAsTheLanguageWritesThem) {
    const struct {
        const char* english;
        const char* german;
    } reasons[] = {{"Permission denied", "Zugriff verweigert"},
                   {"changed since the scan", "seit dem Suchlauf geändert"},
                   {"no trash on its volume: Read-only file system",
                    "kein Papierkorb auf dem Datenträger: Dateisystem schreibgeschützt"},
                   {"The system runs from this drive: it is mounted on /usr %1",
                    "Von diesem Laufwerk läuft das System: er ist unter /usr %1 eingehängt"},
                   {"vim-common would go along: the system needs it",
                    "vim-common würde mit entfernt: das System braucht es"},
                   {"What %2 [A] keeps in the home stays where it is not ticked",
                    "Was %2 [A] im persönlichen Ordner hat, bleibt, wo es nicht angehakt ist"},
                   {"/usr/x stays: only the administrator may remove it",
                    "/usr/x bleibt: nur der Administrator darf es entfernen"},
                   {"/Applications/A.app could not be looked at: Permission denied",
                    "/Applications/A.app konnte nicht angesehen werden: Zugriff verweigert"},
                   {"the index of the manual pages, which only a daily job makes again",
                    "das Verzeichnis der Handbuchseiten, das nur ein täglicher Lauf neu anlegt"},
                   {"the list of what is always kept can not be read: /h/x: Permission denied",
                    "die Liste dessen, was immer bleibt, kann nicht gelesen werden: "
                    "/h/x: Permission denied"},
                   {"rm: words of a tool", "rm: words of a tool"},
                   {"", ""}};
    for (const auto& each : reasons) EXPECT_EQ(inWords(each.english).toStdString(), each.english);
    EXPECT_EQ(shownSize("1.25 MB").toStdString(), "1.25 MB");
    EXPECT_EQ(shownSize("7 byte").toStdString(), "7 byte");
    EXPECT_EQ(shownPercent(QStringLiteral("88.9")).toStdString(), "88.9%");

    const Translations translations(german);
    if (translations.language().isEmpty()) GTEST_SKIP() << "no lrelease here";
    for (const auto& each : reasons) EXPECT_EQ(inWords(each.english).toStdString(), each.german);
    for (const char* const text : changeTexts)
        EXPECT_NE(QCoreApplication::translate("ChangesColumn", text).toStdString(), text);
    EXPECT_EQ(shownSize("1.25 MB").toStdString(), "1,25 MB");
    EXPECT_EQ(shownSize("7 byte").toStdString(), "7 Byte");
    EXPECT_EQ(shownPercent(QStringLiteral("88.9")).toStdString(), "88,9\u00a0%");
}

// The running program has the file of its translation mapped.
TEST(Translations, TheProgramSpeaksTheLanguageOfItsSession) {
    if (Translations(german).language().isEmpty()) GTEST_SKIP() << "no lrelease here";
    const struct {
        const char* languages;
        bool isGerman;
    } cases[] = {{"de_AT:en", true}, {"en_GB:de", false}};
    for (const auto& each : cases) {
        TestTree home;
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* const name :
             {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "XDG_DATA_HOME"})
            environment.insert(QLatin1String(name), QString::fromStdString(home.path()));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                           QStringLiteral("unix:path=/nonexistent"));
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("en_GB.UTF-8"));
        environment.insert(QStringLiteral("LANGUAGE"), QLatin1String(each.languages));
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(ORRINVALE_PROGRAM), QStringList());
        ASSERT_TRUE(program.waitForStarted());
        const auto maps = [&] {
            QFile file(QStringLiteral("/proc/%1/maps").arg(program.processId()));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        EXPECT_TRUE(testing::PageWindow::waitFor([&] { return maps().contains("libqoffscreen"); }));
        // It answers another start once its window stands.
        QProcess second;
        second.setProcessEnvironment(environment);
        second.start(QStringLiteral(ORRINVALE_PROGRAM), QStringList());
        EXPECT_TRUE(second.waitForFinished(10'000));
        EXPECT_EQ(second.exitCode(), 0);
        EXPECT_EQ(second.readAllStandardError().toStdString(), "");
        EXPECT_EQ(maps().contains("orrinvale_de.qm"), each.isGerman) << each.languages;
        program.kill();
        program.waitForFinished();
    }
}

}  // namespace
}  // namespace orrinvale
