// ProgramScenes: see ProgramScenes.h.
#include "gallery/ProgramScenes.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <utility>

#include "engine/settings/UserDefaults.h"
#include "gallery/drawing.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/ApplicationMenu.h"

namespace orrinvale {

ProgramScenes::ProgramScenes(const SampleFolder& /*sample*/, UserDefaults& defaults, const PictureFolder& pictures,
                             QSet<QString> wanted)
    : m_pictures(pictures), m_wanted(std::move(wanted)) {
    addStick(7, "Holiday", "/media/anna/Holiday");
    addStick(8, "Backup", "/media/anna/Backup");
    m_volumes.ejections[7] = {fBsyErr, {"The volume is in use", {{4242, "vlc", "/media/anna/Holiday/Lake.mp4"}}}};
    m_delegate = std::make_unique<AppDelegate>(
        AppDelegateParts{.pages = {.files = &m_files,
                                   .notifications = &m_notifications,
                                   .defaults = &defaults,
                                   .dialogs = &m_dialogs,
                                   .mainQueue = &m_mainQueue,
                                   .icons = [this](const IconRequest& request) { return m_icons.icon(request); },
                                   .reveal = {},
                                   .openAddress = {}},
                         .icons = &m_icons,
                         .volumes = &m_volumes,
                         .mountChanges = &m_mountChanges,
                         .openFolder = [](const std::string& /*path*/) { return true; },
                         .openGuide = [] { return true; },
                         .exitProcess = {},
                         .endBySignal = {}});
    m_delegate->applicationWillFinishLaunching();
    m_delegate->applicationDidFinishLaunching();
    m_window = m_delegate->duplicateMWC()->window();
}

ProgramScenes::~ProgramScenes() = default;

void ProgramScenes::addStick(std::int16_t number, const char* name, const char* path) {
    FakeVolumes::Volume stick;
    stick.volume = {number, {64'000'000'000, 12'000'000'000}, name, path, 0};
    stick.parms.vMVersion = 3;
    stick.parms.vMExtendedAttributes = 1U << bIsOnExternalBus | 1U << bIsEjectable;
    m_volumes.volumes.push_back(stick);
}

bool ProgramScenes::draw() {
    if (!drawMenu()) return false;
    m_delegate->openAboutWindow();
    if (!saveSheet("about")) return false;
    m_delegate->rejestAllDisk();
    return saveSheet("eject");
}

bool ProgramScenes::save(const char* scene, const QPixmap& picture) const {
    const QString name = QLatin1String(scene);
    if (!m_wanted.isEmpty() && !m_wanted.contains(name)) return true;
    return m_pictures.save(QStringLiteral("program-") + name, picture);
}

// A menu is a window of its own, and is painted over the other one.
bool ProgramScenes::drawMenu() {
    QMenu& menu = *m_delegate->menu().menu();
    const auto* const eject = menu.findChild<QAction*>(QStringLiteral("ejectAll"));
    if (!waitFor("the volumes", [eject] { return eject->isEnabled(); })) return false;
    m_window->activateWindow();
    m_window->findChild<QAbstractButton*>(QStringLiteral("menuButton"))->click();
    QApplication::processEvents();
    menu.setActiveAction(menu.findChild<QAction*>(QStringLiteral("help")));
    QPixmap picture = m_window->grab();
    QPainter(&picture).drawPixmap(m_window->mapFromGlobal(menu.pos()), menu.grab());
    menu.close();
    return save("menu", picture);
}

bool ProgramScenes::saveSheet(const char* scene) {
    const auto sheet = [this] { return m_window->findChild<Sheet*>(); };
    if (!waitFor("the sheet", [&] { return sheet() != nullptr && sheet()->content()->y() == 0; })) return false;
    m_window->activateWindow();
    QApplication::processEvents();
    if (!save(scene, m_window->grab())) return false;
    sheet()->findChild<QAbstractButton*>()->click();
    return waitFor("the sheet to go", [&] { return sheet() == nullptr; });
}

}  // namespace orrinvale
