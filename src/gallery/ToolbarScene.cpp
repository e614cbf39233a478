// ToolbarScene: see ToolbarScene.h.
#include "gallery/ToolbarScene.h"

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

ToolbarScene::ToolbarScene(const SampleFolder& /*sample*/, UserDefaults& defaults, const PictureFolder& pictures,
                           const QSet<QString>& /*wanted*/)
    : m_defaults(defaults), m_pictures(pictures) {}

bool ToolbarScene::draw() {
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
                                       .defaults = &m_defaults,
                                       .dialogs = &dialogs,
                                       .mainQueue = &mainQueue,
                                       .icons = [&](const IconRequest& request) { return icons.icon(request); },
                                       .reveal = {},
                                       .openAddress = {}});
    controller.showWindow();
    controller.window()->activateWindow();
    QApplication::processEvents();
    return m_pictures.save(QStringLiteral("toolbar-window"), controller.window()->grab());
}

}  // namespace orrinvale
