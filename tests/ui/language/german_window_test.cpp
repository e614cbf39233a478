// The window in German: no text of another language is left, and none is cut off where the window
// is smallest.
#include <sys/fsuid.h>

#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/cleanPage.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/diskUsagePage.h"
#include "ui/duplicates/duplicatePage.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/kit/look/Theme.h"
#include "ui/language/GermanWindow.h"
#include "ui/loginitems/LoginItemController.h"
#include "ui/memory/CleanMemoryController.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/preferences/PreferencePage.h"
#include "ui/support/LargePage.h"
#include "ui/support/Launched.h"
#include "ui/uninstall/UninstallAppsController.h"
#include "ui/volumes/FreeSpacePage.h"

namespace orrinvale::testing {
namespace {

constexpr uid_t nobody = 65534;

TEST_F(GermanWindow, TheDuplicatePage) {
    PageWindow on;
    ApplicationMenu menu({});
    on.window->setApplicationMenu(menu);
    QWidget& window = *on.window->window();
    ASSERT_EQ(on.window->window()->contentView()->size().width(), 800);
    look("menu", *menu.menu());
    look("start", window);

    ASSERT_TRUE(on.tree.write("folder/a/x.txt", "the same") &&
                on.tree.write("folder/b/x.txt", "the same") &&
                on.tree.write("folder/locked/y.txt", "the same") &&
                on.tree.setMode("folder/locked", 0) && on.tree.setMode("folder", 0755) &&
                on.tree.setMode(".", 0755));
    on.reading.shut();
    // The threads of the search take over whose rights this one has on files.
    const int before = ::setfsuid(nobody);
    on.drop(on.tree.at("folder"));
    ::setfsuid(static_cast<uid_t>(before));
    ASSERT_SOON(on.reading.isWaitedAt() && !on.textOf("countsLabel").empty());
    look("search", window);
    on.reading.open();
    ASSERT_SOON(on.isShown("detailView"));
    look("result", window);

    const QModelIndex copy = on.row("x.txt", "/a/x.txt");
    Q_EMIT on.control<TickOutline>("outline").menuWanted(copy, {});
    lookAtMenu("menu of a row", *on.page().detailView());
    on.tick(copy);
    ASSERT_SOON(on.control("stopBtn").isEnabled());
    look("tick", window);
    ASSERT_TRUE(on.tree.patch("folder/a/x.txt", 3, "changed"));
    on.dialogs.willAnswer(0);
    ASSERT_TRUE(on.remove());
    look("result of the removal", window);
    for (const char* const line : {"quietLine", "failureLine"}) {
        on.click(line);
        lookAtLines(line, window);
    }
    ASSERT_EQ(on.dialogs.alerts().size(), 2U);
    for (const Alert& alert : on.dialogs.alerts()) look("alert", AlertPanel(alert));
    for (const char* const text :
         {"Duplikate finden", "Möchten Sie wirklich alle ausgewählten Dateien löschen?",
          "2 Dateien in folder, insgesamt 1 ausgewählt.", "Dokumente, 0,02 KB",
          "1 Eintrag nicht lesbar", "1 Datei nicht entfernt", "seit dem Suchlauf geändert (1)"})
        EXPECT_TRUE(seen.contains(QString::fromUtf8(text))) << text;
}

TEST_F(GermanWindow, TheLargeFilePage) {
    LargePage on;
    QWidget& window = *on.window.window->window();
    look("start", window);
    ASSERT_TRUE(on.tree.write("folder/a/x.txt", "the same") &&
                on.tree.write("folder/b/y.txt", "another"));
    ASSERT_TRUE(on.scan(on.tree.at("folder")));
    look("result", window);
    Q_EMIT on.control<TickOutline>("outlineView").menuWanted(on.row("a"), {});
    lookAtMenu("menu of a row", *on.page().listView());
    on.tick("a");
    ASSERT_TRUE(on.remove([&](QWidget& progress) { look("removal", progress); }));
    look("result of the removal", window);
    EXPECT_TRUE(seen.contains(QStringLiteral("Große Dateien finden")));
}

TEST_F(GermanWindow, WhatTheProgramTells) {
    Launched on;
    on.canOpen = false;
    on.volumes.with([](FakeVolumes& fake) {
        fake.ejections[7] = {fBsyErr,
                             {"The volume is in use", {{42, "vlc", "/media/stick/a.mp4"}}}};
    });
    on.delegate->applicationDidFinishLaunching();
    for (int alert = 0; alert < 4; ++alert) on.dialogs.willAnswer(0);
    on.delegate->openAboutWindow();
    on.delegate->help();
    on.notifications.post("openFinderWhenClickItems", std::string("/media/stick"));
    on.delegate->rejestAllDisk();
    EXPECT_SOON(on.dialogs.alerts().size() == 4);
    QApplication::processEvents();
    for (const Alert& alert : on.dialogs.alerts()) look("alert", AlertPanel(alert));
    look("menu", *on.delegate->menu().menu());
    EXPECT_TRUE(seen.contains(QStringLiteral(
        "„Stick“ konnte nicht ausgeworfen werden: Der Datenträger wird gerade benutzt, offen "
        "gehalten von vlc (Prozess 42, /media/stick/a.mp4).")));
}

TEST_F(GermanWindow, TheToolbarWindow) {
    Launched on;
    AppPrefsWindowController controller;
    controller.setOpenAddress([](const QString& /*address*/) {});
    controller.setOpenHelp([] {});
    controller.registerPage(duplicatePage(on.pages()));
    for (const PageDescriptor& each :  // none of them is opened
         {diskUsagePage(on.pages(), {}), cleanPage({}), uninstallPage(on.pages(), {}),
          freeSpacePage(on.pages(), {}), memoryPage(on.pages(), {}), loginItemsPage(on.pages(), {}),
          preferencePage(on.pages(), {})})
        controller.registerPage(each);
    controller.showWindow();
    ASSERT_EQ(controller.window()->frame().width(), 800);
    look("toolbar window", *controller.window());
    EXPECT_TRUE(seen.contains(QStringLiteral("Hilfe")));
}

}  // namespace
}  // namespace orrinvale::testing
