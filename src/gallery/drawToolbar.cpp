#include "gallery/drawToolbar.h"

#include <QApplication>

#include "gallery/PageWorkings.h"
#include "gallery/drawing.h"
#include "platform/linux/LinuxFiles.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/cleanPage.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/diskUsagePage.h"
#include "ui/duplicates/duplicatePage.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/loginitems/LoginItemController.h"
#include "ui/memory/CleanMemoryController.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/preferences/PreferencePage.h"
#include "ui/uninstall/UninstallAppsController.h"
#include "ui/volumes/FreeSpacePage.h"

namespace orrinvale {

bool drawToolbar(UserDefaults& defaults, const PictureFolder& pictures) {
    const LinuxFileSystem files;
    PageWorkings workings;
    AppPrefsWindowController controller;
    controller.setOpenAddress([](const QString& /*address*/) {});
    controller.setOpenHelp([] {});
    const PageServices services = workings.parts(files, defaults);
    controller.registerPage(duplicatePage(services));
    // None of these is opened here.
    controller.registerPage(diskUsagePage(services, {}));
    controller.registerPage(cleanPage({}));
    controller.registerPage(uninstallPage(services, {}));
    controller.registerPage(freeSpacePage(services, {}));
    controller.registerPage(memoryPage(services, {}));
    controller.registerPage(loginItemsPage(services, {}));
    controller.registerPage(preferencePage(services, {}));
    controller.showWindow();
    controller.window()->activateWindow();
    QApplication::processEvents();
    return pictures.save(QStringLiteral("toolbar-window"), controller.window()->grab());
}

}  // namespace orrinvale
