#include "gallery/PreferenceScenes.h"

#include <QApplication>
#include <QScrollArea>
#include <algorithm>

#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/updates/UpdateCheck.h"
#include "gallery/PageWorkings.h"
#include "gallery/drawing.h"
#include "platform/linux/LinuxFiles.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/preferences/PreferencePage.h"

namespace orrinvale {

bool drawPreferences(UserDefaults& defaults, const PictureFolder& pictures,
                     const QSet<QString>& wanted) {
    const auto isWanted = [&](const QString& scene) {
        return wanted.isEmpty() || wanted.contains(scene);
    };
    const QString inWindow = QStringLiteral("preferences");
    const QString whole = QStringLiteral("preferences-all");
    const LinuxFileSystem files;
    auto& workings = *new PageWorkings;  // settings may still be told of
    defaults.setInteger(2, ZvUserCachesKey);
    defaults.setFloat(0.15F, ZvSpaceAlarmKey);
    const PageServices services = workings.parts(files, defaults);
    if (isWanted(inWindow)) {
        AppPrefsWindowController controller;
        controller.setOpenAddress([](const QString& /*address*/) {});
        controller.setOpenHelp([] {});
        controller.registerPage(preferencePage(services, {}));
        controller.showWindow();
        controller.window()->activateWindow();
        QApplication::processEvents();
        if (!pictures.save(inWindow, controller.window()->grab())) return false;
    }
    if (!isWanted(whole)) return true;
    constexpr QSize beginning{800, 600};
    PreferencePage page(services, {.hasTray = [] { return true; },
                                   .hasDesktopNotes = true,
                                   .hasDiskUsage = true,
                                   .updateRoad = [] { return UpdateRoad::Server; }});
    page.view()->resize(beginning);
    page.view()->show();
    QApplication::processEvents();
    // As high as all groups are; lines that break anew change that again.
    const auto& scrolled = *page.view()->findChild<QScrollArea*>(QStringLiteral("scrollArea"));
    constexpr int mostRounds = 5;
    for (int round = 0; round < mostRounds; ++round) {
        const int lacking = scrolled.widget()->height() - scrolled.viewport()->height();
        page.view()->resize(beginning.width(), page.view()->height() + std::max(lacking, 0));
        QApplication::processEvents();
    }
    return pictures.save(whole, page.view()->grab());
}

}  // namespace orrinvale
