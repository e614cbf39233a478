// The program's menu, entry by entry, in both languages, and what each sets off.
#include <QApplication>
#include <QPlainTextEdit>
#include <QTest>

#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/updates/UpdateCheck.h"
#include "support/test.h"
#include "ui/fastclean/CleanSysController.h"
#include "ui/fastclean/FastClean.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/look/Translations.h"
#include "ui/page/Page.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/preferences/ToolbarItem.h"
#include "ui/support/Launched.h"
#include "ui/updates/QnCheckUpdateWindowController.h"

namespace orrinvale::testing {
namespace {

struct Entry {
    const char *name, *english, *german;
    const char* effect;  // null: a line between
};

constexpr const char* line = "-";

constexpr Entry entries[] = {
    {"about", "About Orrinvale", "Über Orrinvale", "words"},
    {"aboutComputer", "About This Computer", "Über diesen Computer", "computer"},
    {line, "", "", nullptr},
    {"pages", "Show All Pages", "Alle Seiten zeigen", "page duplicates_file"},
    {"diskUsageMenu", "Disk Usage", "Speicherbelegung", "page disk_usage"},
    {"scanMenu", "Clean", "Aufräumen", "page Scan"},
    {"UninstallMenu", "Uninstall Applications", "Anwendungen deinstallieren", "page uninstall"},
    {"freeSpaceMenu", "Free Space", "Freier Platz", "page free_space"},
    {"memory", "Memory", "Arbeitsspeicher", "page memory"},
    {"loginItems", "Login Items", "Anmeldeobjekte", "page login_items"},
    {line, "", "", nullptr},
    {"fastClean", "Fast Clean", "Schnell aufräumen", "fast clean"},
    {"ejectAll", "Eject All", "Alle Datenträger auswerfen", "eject"},
    {line, "", "", nullptr},
    {"Reference", "Preferences…", "Einstellungen …", "page preferences"},
    {"checkUpdate", "Check for Updates…", "Nach Aktualisierungen suchen …", "updates"},
    {line, "", "", nullptr},
    {"help", "User Guide", "Handbuch", "guide"},
    {"showLog", "Show Log…", "Protokoll zeigen …", "words"},
    {"copyReport", "Copy Report…", "Bericht kopieren …", "report"},
    {line, "", "", nullptr},
    {"quit", "Quit Orrinvale", "Orrinvale beenden", "quit"},
};

constexpr const char* pageOrder[] = {"duplicates_file", "disk_usage", "Scan",        "uninstall",
                                     "free_space",      "memory",     "login_items", "preferences"};

/// Over whichever window it stands.
template <class Kind> Kind* anywhere() {
    for (QWidget* const each : QApplication::topLevelWidgets())
        if (auto* const found = each->findChild<Kind*>()) return found;
    return nullptr;
}

class EmptyPage final : public Page {
public:
    QWidget* view() const override { return m_view; }
    void setMainWindow(QWidget* /*window*/) override {}

private:
    QWidget* const m_view = new QWidget;
};

struct Menu : Launched {
    explicit Menu(const UpdateParts& updates) : Launched(systemAndStick(), nullptr, &updates) {
        // One that an earlier test has made works on settings that are gone.
        delete &AppPrefsWindowController::sharedPrefsWindowController();
        auto& window = AppPrefsWindowController::sharedPrefsWindowController();
        for (const char* const each : pageOrder)
            window.registerPage({QLatin1String(each), QLatin1String(each), {}, [] {
                                     return std::make_unique<EmptyPage>();
                                 }});
        PreferenceViewController::initialize();  // Fast Clean cleans what is on
        for (const char* const key : {ZvUserLogsKey, ZvSystemLogsKey}) defaults.setInteger(0, key);
        defaults.setInteger(1, ZvUserCachesKey);
        tree.write(".cache/a", "1");
        delegate->applicationDidFinishLaunching();
    }
    ~Menu() { delete &AppPrefsWindowController::sharedPrefsWindowController(); }

    std::string shownPage() const {
        auto& window = AppPrefsWindowController::sharedPrefsWindowController();
        for (const char* const each : pageOrder) {
            const auto* const item = window.toolbarItems().value(QLatin1String(each));
            if (item != nullptr && item->isChecked()) return std::string("page ") + each;
        }
        return {};
    }
    /// What the entry has set off, as the table says it; takes it away again.
    std::string effect() {
        if (const auto* const text = anywhere<QPlainTextEdit>())
            return delete text->window(), "report";
        if (auto* const sheet = anywhere<Sheet>()) return delete sheet, "computer";
        if (delegate->checkUpdateWC() != nullptr)
            return delegate->checkUpdateWC()->closeWindow(), "updates";
        if (const auto* const run = delegate->fastClean()->clrSysController();
            run != nullptr && run->window()->isVisible())
            return delegate->handleCloseCleanWindow(), "fast clean";
        if (dialogs.alerts().size() > m_alerts) return m_alerts = dialogs.alerts().size(), "words";
        if (!ends.empty()) return "quit";
        if (volumes.ejected().size() > m_ejected)
            return m_ejected = volumes.ejected().size(), "eject";
        if (std::exchange(guides, 0) > 0) return "guide";
        return shownPage();
    }

private:
    std::size_t m_alerts = 0, m_ejected = 0;
};

TEST(ApplicationMenu, EachEntrySaysAndDoesWhatItShould) {
    const UpdateParts updates{
        .transport = nullptr, .address = {}, .keys = {}, .isOwnedByPackage = [] { return true; }};
    for (const bool isGerman : {false, true}) {
        SCOPED_TRACE(isGerman ? "German" : "English");
        const Translations translations({isGerman ? QStringLiteral("de") : QStringLiteral("en")});
        if (isGerman && translations.language().isEmpty()) GTEST_SKIP() << "no lrelease here";
        Menu on(updates);
        Q_EMIT on.delegate->menu().opened();
        ASSERT_SOON(on.entry("ejectAll")->isEnabled());
        std::vector<QAction*> shown;
        for (QAction* const each : on.delegate->menu().menu()->actions())
            if (each->isVisible() && each->objectName() != QLatin1String("volumes"))
                shown.push_back(each);
        ASSERT_EQ(shown.size(), std::size(entries));
        for (std::size_t i = 0; i < shown.size(); ++i) {
            const Entry& wanted = entries[i];
            QAction& entry = *shown[i];
            if (wanted.effect == nullptr) {
                EXPECT_TRUE(entry.isSeparator()) << i;
                continue;
            }
            EXPECT_EQ(entry.objectName(), QLatin1String(wanted.name));
            EXPECT_EQ(entry.text(), QString::fromUtf8(isGerman ? wanted.german : wanted.english));
            ASSERT_TRUE(entry.isEnabled()) << wanted.name;
            if (std::string_view(wanted.effect) == "words") on.dialogs.willAnswer(0);
            entry.trigger();
            std::string done;
            EXPECT_SOON((done = on.effect()) == wanted.effect)
                << wanted.name << " has done " << done;
        }
    }
}

TEST(ApplicationMenu, AStartWithAnActionShowsItsPage) {
    const UpdateParts updates;
    Menu on(updates);
    const struct {
        std::string action;
        const char* page;
    } cases[] = {{"clean", "page Scan"},
                 {"disk-usage", "page disk_usage"},
                 {"uninstall", "page uninstall"},
                 {startAction::withFolder("disk-usage", on.tree.path()), "page disk_usage"},
                 {"free-space", "page free_space"},
                 {"memory", "page memory"},
                 {"login-items", "page login_items"},
                 {"preferences", "page preferences"}};
    for (const auto& each : cases) {
        on.delegate->perform({StartRequest::Kind::Action, each.action, ""});
        EXPECT_SOON(on.effect() == each.page) << each.action << " shows " << on.effect();
    }
}

TEST(ApplicationMenu, TheToolbarHasItsPagesInOrder) {
    const UpdateParts updates;
    Menu on(updates);
    auto& window = AppPrefsWindowController::sharedPrefsWindowController();
    window.setOpenAddress([](const QString& /*address*/) {});
    window.setOpenHelp([] {});
    on.entry("pages")->trigger();
    QStringList order;
    for (const char* const each : pageOrder) order += QLatin1String(each);
    order += {QStringLiteral("NSToolbarFlexibleSpaceItem"), QStringLiteral("NSToolbarSpaceItem"),
              QStringLiteral("websit"), QStringLiteral("Help")};
    EXPECT_EQ(window.toolbarIdentifiers(), order);
}

}  // namespace
}  // namespace orrinvale::testing
