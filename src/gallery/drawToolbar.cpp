#include "gallery/drawToolbar.h"

#include <QApplication>

#include "gallery/PageWorkings.h"
#include "gallery/drawing.h"
#include "platform/linux/LinuxFiles.h"
#include "ui/duplicates/duplicatePage.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/volumes/FreeSpacePage.h"

namespace orrinvale {

bool drawToolbar(UserDefaults& defaults, const PictureFolder& pictures) {
    const LinuxFileSystem files;
    PageWorkings workings;
    AppPrefsWindowController controller;
    controller.setOpenAddress([](const QString& /*address*/) {});
    controller.setOpenHelp([] {});
    controller.registerPage(duplicatePage(workings.parts(files, defaults)));
    controller.registerPage(freeSpacePage(workings.parts(files, defaults), {}));  // not opened here
    controller.showWindow();
    controller.window()->activateWindow();
    QApplication::processEvents();
    return pictures.save(QStringLiteral("toolbar-window"), controller.window()->grab());
}

}  // namespace orrinvale
