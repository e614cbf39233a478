// drawToolbar: see drawToolbar.h.
#include "gallery/drawToolbar.h"

#include <QApplication>

#include "engine/base/NotificationCenter.h"
#include "gallery/drawing.h"
#include "platform/linux/LinuxFiles.h"
#include "services/foundation/QtMainQueue.h"
#include "ui/duplicates/registerDuplicatePage.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/FileIcons.h"

namespace orrinvale {

bool drawToolbar(UserDefaults& defaults, const PictureFolder& pictures) {
    const LinuxFileSystem files;
    NotificationCenter notifications;
    QtMainQueue mainQueue;
    WindowDialogs dialogs;
    FileIcons icons;
    AppPrefsWindowController controller;
    controller.setOpenAddress([](const QString& /*address*/) {});
    controller.setOpenHelp([] {});
    registerDuplicatePage(controller, {.files = &files,
                                       .notifications = &notifications,
                                       .defaults = &defaults,
                                       .dialogs = &dialogs,
                                       .mainQueue = &mainQueue,
                                       .icons = [&](const IconRequest& request) { return icons.icon(request); },
                                       .reveal = {},
                                       .openAddress = {}});
    controller.showWindow();
    controller.window()->activateWindow();
    QApplication::processEvents();
    return pictures.save(QStringLiteral("toolbar-window"), controller.window()->grab());
}

}  // namespace orrinvale
