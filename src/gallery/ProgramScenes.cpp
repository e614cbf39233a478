// The menu, the sheets about the program, and a volume that will not go.
#include "gallery/ProgramScenes.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "engine/settings/UserDefaults.h"
#include "gallery/drawing.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/ApplicationMenu.h"

namespace orrinvale {

SysResult<std::string> StagedSystem::sysctlbyname(std::string_view name) const {
    constexpr std::uint64_t memory = 16ULL << 30U;
    if (name == "hw.memsize")
        return std::string(reinterpret_cast<const char*>(&memory), sizeof memory);
    const std::pair<const char*, const char*> texts[] = {
        {"hw.machine", "x86_64"},
        {"hw.model", "Kestrel Book 14 (2024 Edition)"},
        {"machdep.cpu.vendor", "GenuineIntel"},
        {"machdep.cpu.brand_string", "13th Gen Intel(R) Core(TM) i7-1360P"},
        {"kern.ostype", "Linux"},
        {"kern.osrelease", "6.1.0-28-amd64"},
        {"kern.hostname", "annas-desk"}};
    for (const auto& [each, text] : texts)
        if (name == each) return text;
    return tl::unexpected(ENOENT);
}

ProgramScenes::ProgramScenes(UserDefaults& defaults, const PictureFolder& pictures,
                             QSet<QString> wanted)
    : m_pictures(pictures), m_wanted(std::move(wanted)) {
    for (const auto& [number, name] : {std::pair(7, "Holiday"), std::pair(8, "Backup")})
        m_volumes.volumes.push_back(FakeVolumes::volume(static_cast<std::int16_t>(number), name,
                                                        std::string("/media/anna/") + name, true,
                                                        64'000'000'000));
    m_volumes.ejections[7] = {
        fBsyErr, {"The volume is in use", {{4242, "vlc", "/media/anna/Holiday/Lake.mp4"}}}};
    m_delegate = std::make_unique<AppDelegate>(
        AppDelegateParts{.pages = m_workings.parts(m_files, defaults),
                         .clean = {.files = &m_files,
                                   .folders = &m_folders,
                                   .utilities = m_utilities.get(),
                                   .settingsFolder = {}},
                         .icons = &m_workings.icons,
                         .ejections = &m_ejections,
                         .volumesAtOnce = &m_volumes,
                         .mountChanges = &m_mountChanges,
                         .systemWatch = &m_watch,
                         .updates = &m_updates,
                         .diagnostics = {.system = &m_system,
                                         .volumes = &m_volumes,
                                         .names = {"/home/anna", "anna", "annas-desk"},
                                         .logState = [this] { return m_log; },
                                         .keepLogFile = {}},
                         .openFolder = [](const std::string& /*path*/) { return true; },
                         .openGuide = [](const std::function<void()>& /*failed*/) {},
                         .stopListening = {},
                         .exitProcess = {},
                         .endBySignal = {}});
    // Which entries the menu has goes by the pages that there are.
    auto& pages = AppPrefsWindowController::sharedPrefsWindowController();
    for (const QString& each : {AppDelegate::diskUsageIdentifier, AppDelegate::scanIdentifier,
                                AppDelegate::uninstallIdentifier, AppDelegate::freeSpaceIdentifier,
                                AppDelegate::memoryIdentifier, AppDelegate::loginItemsIdentifier,
                                AppDelegate::preferencesIdentifier})
        pages.registerPage({.identifier = each, .label = {}, .picture = {}, .make = {}});
    m_delegate->applicationWillFinishLaunching();
    m_delegate->applicationDidFinishLaunching();
}

ProgramScenes::~ProgramScenes() = default;

TCImageWindow& ProgramScenes::window() const { return *m_delegate->duplicateMWC()->window(); }

bool ProgramScenes::draw() {
    if (!drawMenu()) return false;
    m_delegate->openAboutWindow();
    if (!saveSheet("about")) return false;
    m_delegate->openComputerWindow();
    if (!saveSheet("computer")) return false;
    m_delegate->showLog();
    if (!saveSheet("log") || !drawReport()) return false;
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
    window().activateWindow();
    window().findChild<QAbstractButton*>(QStringLiteral("menuButton"))->click();
    QApplication::processEvents();
    menu.setActiveAction(menu.findChild<QAction*>(QStringLiteral("help")));
    // It reaches beyond the window, as it does on a screen.
    const QPixmap behind = window().grab();
    const QRect place(window().mapFromGlobal(menu.pos()), menu.size());
    const qreal scale = behind.devicePixelRatio();
    QPixmap picture(
        (QSizeF(window().width(), std::max(window().height(), place.bottom() + 1)) * scale)
            .toSize());
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.drawPixmap(0, 0, behind);
    painter.drawPixmap(place.topLeft(), menu.grab());
    painter.end();
    menu.close();
    return save("menu", picture);
}

// A window of its own.
bool ProgramScenes::drawReport() {
    m_delegate->copyReport();
    QWidget* report = nullptr;
    const auto find = [&] {
        report = window().findChild<QWidget*>(QStringLiteral("lineList"));
        return report != nullptr && report->isVisible();
    };
    if (!waitFor("the report", find)) return false;
    report->activateWindow();
    QApplication::processEvents();
    const bool isSaved = save("report", report->grab());
    delete report;
    return isSaved;
}

bool ProgramScenes::saveSheet(const char* scene) {
    const auto sheet = [this] { return window().findChild<Sheet*>(); };
    if (!waitFor("the sheet", [&] { return sheet() != nullptr && sheet()->content()->y() == 0; }))
        return false;
    window().activateWindow();
    QApplication::processEvents();
    if (!save(scene, window().grab())) return false;
    sheet()->findChild<QAbstractButton*>()->click();
    return waitFor("the sheet to go", [&] { return sheet() == nullptr; });
}

}  // namespace orrinvale
