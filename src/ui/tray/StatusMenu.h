// StatusMenu: the menu of the status item: volumes by group, what ejects them, the way to the
// window, and the end of the program. StatusItem.h shows it, hostMenu.h puts it into words for
// hosts that take nothing else.
#pragma once

#include <QMenu>
#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/memory/ClearMemory.h"
#include "engine/volumes/SystemSight.h"
#include "ui/tray/MenuItemView.h"
#include "ui/tray/MyItemSetObj.h"

namespace orrinvale {

class UserDefaults;

/// The menu is missing or complete. A rebuild drops it with all its rows; a refresh finds the rows
/// by their invisible title, the reference number, and writes into them. The title is the data of
/// an entry; its text is what the row reads, for screen readers. Main thread only.
class StatusMenu final : public QObject {
    Q_OBJECT
public:
    struct Actions {
        std::function<void(MenuItemView& row)> eject;
        std::function<void(const std::string& root)> openVolume;
        std::function<void()> rejestAllDisk;
        std::function<void()> openMainWindow;  ///< only if it may be open
        std::function<void()> showMainWindowWhenClickMenuItem;
        std::function<void()> quit;
        std::function<bool(const VolumePlace& place)> isEjecting{};  ///< empty: nothing ever is
    };
    struct Parts {
        UserDefaults* defaults = nullptr;  ///< as the next, outlives the menu
        const Memory* memory = nullptr;    ///< null: there is no row of the memory
        Actions actions;
    };

    explicit StatusMenu(Parts parts, QObject* parent = nullptr);
    ~StatusMenu() override;

    /// Null while it is missing.
    [[nodiscard]] QMenu* menu() const { return m_menu.get(); }

    /// The volume part, from a look at the volumes; makes the menu where it is missing.
    void addMenu(const SystemSight& sight);
    /// The fixed part, and the main window where it may be open.
    void addOtherItem();
    void addMenuItemView(const MyItemSetObj::Items& items);
    /// What is being ejected is another set.
    void showEjecting();
    /// Drops the menu.
    void removeItems();
    /// Closes it.
    void cancelTracking();
    /// Closes, drops and builds it; does nothing while there is none.
    void rebuild(const SystemSight& sight);

    /// Builds the menu anew when other volumes stand than those in it, and writes the figures into
    /// its rows.
    void updateDataForMenuItem(const SystemSight& sight);

    /// The row of the memory, into freeMemoryArr and no menu.
    void freeMemoryListView();
    /// Frees memory, unless that is under way.
    void cleanMemoryClickAction();

    /// The volume of this title; null for none.
    [[nodiscard]] QAction* itemWithTitle(const QString& title) const;
    /// The view of a row; null for other entries.
    [[nodiscard]] static MenuItemView* viewOf(const QAction* item);

    [[nodiscard]] const MyItemSetObj& groups() const { return m_groups; }
    [[nodiscard]] const MyItemSetObj::Items& allDiskItemArr() const { return m_allDiskItemArr; }
    [[nodiscard]] std::size_t previousCount() const { return m_previousCount; }

Q_SIGNALS:
    /// There is another menu, or none.
    void replaced();
    /// Rows show other figures.
    void refreshed();

private:
    [[nodiscard]] bool isEjecting(const MenuItemView& row) const;
    void addVolume(const SeenVolume& seen, std::int32_t tag);
    void bindRow(QAction& item, MenuItemView& view);
    void addGroup(std::uint64_t code, const MyItemSetObj::Items& items);
    void updateRow(const SeenVolume& seen);
    void updateMemoryRow();
    void readMemory();

    const Parts m_parts;
    std::unique_ptr<QMenu> m_menu;
    MyItemSetObj m_groups;
    MyItemSetObj::Items m_allDiskItemArr;
    std::vector<std::unique_ptr<QAction>> m_freeMemoryArr;
    SystemSight m_built;  // whose volumes are in the menu
    std::size_t m_previousCount = 0;
    std::unique_ptr<ClearMemory> m_clearMemory;
    std::unique_ptr<cleanMemoryInfo> m_cleanMemInfo;
    _MEMORY_INFO m_memoryInfo;
};

}  // namespace orrinvale
