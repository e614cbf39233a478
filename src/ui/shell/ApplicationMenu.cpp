// The order of the menu is that of the constructor; what has to be told of begins greyed or hidden.
#include "ui/shell/ApplicationMenu.h"

#include <QAction>
#include <QMenu>

namespace orrinvale {

ApplicationMenu::ApplicationMenu(const Actions& actions, QObject* parent)
    : QObject(parent), m_menu(std::make_unique<QMenu>()) {
    m_menu->setObjectName(QStringLiteral("applicationMenu"));
    add("about", tr("About Orrinvale"), {}, actions.openAboutWindow);
    add("aboutComputer", tr("About This Computer"), {}, actions.openComputerWindow);
    m_menu->addSeparator();
    addPages(actions);
    m_menu->addSeparator();
    m_fastClean = add("fastClean", tr("Fast Clean"), {}, actions.cleaningFile);
    m_volumes = add("volumes", tr("Volumes"), {}, [] {});
    m_eject =
        add("ejectAll", tr("Eject All"), QKeySequence(Qt::CTRL | Qt::Key_E), actions.rejestAllDisk);
    m_menu->addSeparator();
    m_preferences = add("Reference", tr("Preferences…"), QKeySequence(Qt::CTRL | Qt::Key_Comma),
                        actions.Reference);
    m_checkUpdate =
        add("checkUpdate", tr("Check for Updates…"), {}, actions.CheckupdateMenuItemAction);
    m_menu->addSeparator();
    add("help", tr("User Guide"), QKeySequence(QKeySequence::HelpContents), actions.help);
    add("showLog", tr("Show Log…"), {}, actions.showLog);
    add("copyReport", tr("Copy Report…"), {}, actions.copyReport);
    m_menu->addSeparator();
    add("quit", tr("Quit Orrinvale"), QKeySequence(Qt::CTRL | Qt::Key_Q), actions.quit);
    m_fastClean->setEnabled(false);
    m_eject->setEnabled(false);
    m_preferences->setEnabled(false);
    m_pages->setVisible(false);
    setPages(false, false, false);
    setHasMemory(false);
    setHasLoginItems(false);
    setVolumes(nullptr);
    setHasDiskUsage(false);
    connect(m_menu.get(), &QMenu::aboutToShow, this, &ApplicationMenu::opened);
}

ApplicationMenu::~ApplicationMenu() = default;

// In the order of the toolbar.
void ApplicationMenu::addPages(const Actions& actions) {
    m_pages =
        add("pages", tr("Show All Pages"), QKeySequence(Qt::CTRL | Qt::Key_0), actions.showPages);
    m_diskUsageMenu = add("diskUsageMenu", tr("Disk Usage"), {}, actions.onClickDiskUsage);
    m_scanMenu = add("scanMenu", tr("Clean"), {}, actions.onClickScan);
    m_UninstallMenu =
        add("UninstallMenu", tr("Uninstall Applications"), {}, actions.onClickUninstall);
    m_freeSpaceMenu = add("freeSpaceMenu", tr("Free Space"), {}, actions.onClickFree);
    m_memory = add("memory", tr("Memory"), {}, actions.showMemory);
    m_loginItems = add("loginItems", tr("Login Items"), {}, actions.showLoginItems);
}

QAction* ApplicationMenu::add(const char* name, const QString& title, const QKeySequence& keys,
                              const std::function<void()>& action) {
    QAction* const made = m_menu->addAction(title);
    made->setObjectName(QLatin1String(name));
    made->setShortcut(keys);
    made->setShortcutVisibleInContextMenu(true);
    made->setEnabled(action != nullptr);
    if (action) connect(made, &QAction::triggered, this, [action] { action(); });
    return made;
}

// Those without keys stay out: of an entry in a window the keys within its menu would work too, and
// the volumes have some that this menu has.
void ApplicationMenu::addKeysTo(QWidget& window) const {
    for (QAction* const each : m_menu->actions())
        if (!each->shortcut().isEmpty()) window.addAction(each);
}

void ApplicationMenu::setCanEject(bool canEject) { m_eject->setEnabled(canEject); }

void ApplicationMenu::setCanFastClean(bool canFastClean) { m_fastClean->setEnabled(canFastClean); }

void ApplicationMenu::setHasPreferences(bool hasPreferences) {
    m_preferences->setEnabled(hasPreferences);
}

void ApplicationMenu::setPages(bool hasScan, bool hasFree, bool hasUninstall) {
    m_scanMenu->setVisible(hasScan);
    m_freeSpaceMenu->setVisible(hasFree);
    m_UninstallMenu->setVisible(hasUninstall);
}

void ApplicationMenu::setHasMemory(bool hasMemory) { m_memory->setVisible(hasMemory); }

void ApplicationMenu::setHasLoginItems(bool hasLoginItems) {
    m_loginItems->setVisible(hasLoginItems);
}

void ApplicationMenu::setVolumes(QMenu* volumes) {
    m_volumes->setMenu(volumes);
    m_volumes->setVisible(volumes != nullptr);
}

void ApplicationMenu::setHasDiskUsage(bool hasDiskUsage) {
    m_diskUsageMenu->setVisible(hasDiskUsage);
}

void ApplicationMenu::setNewVersion(const QString& version) {
    m_checkUpdate->setText(
        tr("New: Orrinvale %1…")
            .arg(QString(version).replace(QLatin1Char('&'), QLatin1String("&&"))));
}

void ApplicationMenu::setHasPages(bool hasPages) { m_pages->setVisible(hasPages); }

}  // namespace orrinvale
