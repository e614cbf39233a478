// Tray: the status item, its menu in both forms and their refresh, put together. AppDelegate hands
// its notices on to it.
#pragma once

#include <QIcon>
#include <QObject>
#include <functional>
#include <memory>
#include <string>

#include "platform/tray.h"
#include "services/volumes/SystemWatch.h"
#include "ui/tray/CustomStatusItemView.h"
#include "ui/tray/HostMenu.h"
#include "ui/tray/StatusItem.h"
#include "ui/tray/StatusMenu.h"

namespace orrinvale {

class MainQueue;
class NotificationCenter;

/// Runs from its construction on. Main thread only.
class Tray final : public QObject {
    Q_OBJECT
public:
    struct Parts {
        SystemWatch* watch = nullptr;  ///< as all others, outlives the object
        TrayHost* host = nullptr;      ///< null: there is never a tray
        MainQueue* mainQueue = nullptr;
        const NotificationCenter* notifications = nullptr;
        StatusMenu::Parts menu;
        std::function<void(const ZvVolumeInfo& boot)>
            sawHomeDisk{};  ///< may be empty; gives the image
    };

    explicit Tray(Parts parts, QObject* parent = nullptr);
    ~Tray() override;

    /// The view's texts, its title, and the menu in it. The view is made at the first call.
    void showMenuBar();
    /// True takes the item out of the tray.
    void setStatusBarHidden(bool isHidden);
    [[nodiscard]] bool isHidden() const { return m_item.isHidden(); }
    /// The item's picture; for a null one that of the program.
    void setImage(const QIcon& image);
    /// Builds the menu anew, if there is one, and looks at the volumes now.
    void refMenuItemWhenDeleteAndAdd();
    void cancelTracking() { m_menu.cancelTracking(); }
    /// The refresh.
    void updateDataForMenuItem(const SystemSight& sight);

    /// Whether a closed window can be found again by the tray; also as long as nobody knows yet
    /// whether there is one, which lasts three seconds at most.
    [[nodiscard]] bool canBeFound() const {
        return !m_item.isHidden() && (!m_isHostKnown || m_item.isShown());
    }

    /// The menu with rows while no item shows it, for a window of ours; else null, as before the
    /// first look.
    [[nodiscard]] QMenu* menuForWindow() const {
        return m_item.isShown() ? nullptr : m_menu.menu();
    }
    /// Whether the desktop would show the item; true as well as long as nobody knows yet.
    [[nodiscard]] bool hasHost() const { return !m_isHostKnown || m_item.hasHost(); }

    [[nodiscard]] StatusMenu& menu() { return m_menu; }
    [[nodiscard]] HostMenu& hostMenu() { return m_hostMenu; }
    [[nodiscard]] const CustomStatusItemView* statusItemView() const {
        return m_statusItemView.get();
    }  ///< null before showMenuBar()

Q_SIGNALS:
    void menuForWindowChanged();

private:
    void takeHost(TrayKind kind);
    void takeMenu();
    void showHomeDisk(const ZvVolumeInfo& boot);

    const Parts m_parts;
    StatusItem m_item;
    StatusMenu m_menu;
    HostMenu m_hostMenu;
    std::unique_ptr<CustomStatusItemView> m_statusItemView;
    QString m_statusFreeSpace, m_statusTotalSpace;  // of the boot volume
    bool m_isHostKnown = false;
    SystemWatch::Observation m_watching;
};

}  // namespace orrinvale
