// ApplicationMenu: what concerns the whole program: about it, its pages, help, and its end.
#pragma once

#include <QKeySequence>
#include <QObject>
#include <functional>
#include <memory>

class QAction;
class QMenu;
class QWidget;

namespace orrinvale {

/// Main thread only.
class ApplicationMenu final : public QObject {
    Q_OBJECT
public:
    /// An entry without an action is greyed: there is nothing behind it in this program.
    struct Actions {
        std::function<void()> openAboutWindow;
        std::function<void()> openComputerWindow;  ///< "About This Computer"
        std::function<void()> Reference;           ///< the preferences
        std::function<void()> CheckupdateMenuItemAction;
        std::function<void()> showPages;
        std::function<void()> onClickScan;       ///< the page that cleans
        std::function<void()> onClickFree;       ///< the page "Free Space"
        std::function<void()> onClickUninstall;  ///< the page that uninstalls
        std::function<void()> showMemory;        ///< the page "Memory"
        std::function<void()> showLoginItems;    ///< the page "Login Items"
        std::function<void()> onClickDiskUsage;  ///< the page "Disk Usage"
        std::function<void()> cleaningFile;      ///< "Fast Clean"
        std::function<void()> rejestAllDisk;     ///< "Eject All"
        std::function<void()> help;
        std::function<void()> showLog;
        std::function<void()> copyReport;
        std::function<void()> quit;
    };

    explicit ApplicationMenu(const Actions& actions, QObject* parent = nullptr);
    ~ApplicationMenu() override;

    [[nodiscard]] QMenu* menu() const { return m_menu.get(); }

    /// The keys of the entries work in this window from now on.
    void addKeysTo(QWidget& window) const;

    /// Whether there is anything to eject. It is greyed until that is told.
    void setCanEject(bool canEject);

    /// Whether a Fast Clean may begin. It is greyed until that is told.
    void setCanFastClean(bool canFastClean);

    /// Whether there is a page of preferences. They are greyed until that is told.
    void setHasPreferences(bool hasPreferences);

    /// Which of the three pages there are. None is offered until that is told.
    void setPages(bool hasScan, bool hasFree, bool hasUninstall);

    /// The volumes, which a tray shows otherwise; null is none. The menu may go before it is
    /// replaced.
    void setVolumes(QMenu* volumes);

    /// Whether there is a page "Memory"; likewise.
    void setHasMemory(bool hasMemory);
    /// Whether there is a page "Login Items"; likewise.
    void setHasLoginItems(bool hasLoginItems);
    /// Whether there is a page of disk usage. It is not offered until that is told.
    void setHasDiskUsage(bool hasDiskUsage);

    /// There is a newer version, and the entry that looks for one says so from now on.
    void setNewVersion(const QString& version);

    /// Whether the window with all pages shows anything that the main window does not. It is not
    /// offered until that is told.
    void setHasPages(bool hasPages);

Q_SIGNALS:
    /// It is about to be seen: the moment to look what can be ejected.
    void opened();

private:
    void addPages(const Actions& actions);
    QAction* add(const char* name, const QString& title, const QKeySequence& keys,
                 const std::function<void()>& action);

    const std::unique_ptr<QMenu> m_menu;
    QAction* m_fastClean = nullptr;
    QAction* m_volumes = nullptr;
    QAction* m_eject = nullptr;
    QAction* m_preferences = nullptr;
    QAction* m_checkUpdate = nullptr;
    QAction* m_pages = nullptr;
    QAction* m_scanMenu = nullptr;
    QAction* m_freeSpaceMenu = nullptr;
    QAction* m_UninstallMenu = nullptr;
    QAction* m_memory = nullptr;
    QAction* m_loginItems = nullptr;
    QAction* m_diskUsageMenu = nullptr;
};

}  // namespace orrinvale
