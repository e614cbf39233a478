// PageWindow: the main window with the duplicate page over real folders, driven by the names of its
// controls.
#pragma once

#include <QAbstractItemModel>
#include <QImage>
#include <condition_variable>

#include "engine/settings/UserDefaults.h"
#include "platform/fake/FakeAuthorization.h"
#include "platform/linux/LinuxPermissions.h"
#include "services/foundation/QtMainQueue.h"
#include "support/test.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/shell/DuplicateMainWindowController.h"
#include "ui/shell/FileIcons.h"
#include "ui/support/NamedControls.h"
#include "ui/support/RecordedDialogs.h"

namespace orrinvale::testing {

/// Holds other threads up where a test wants to look at the window meanwhile.
class Gate {
public:
    void shut() { set(false); }
    void open() { set(true); }
    void pass();
    /// Somebody stands before it now.
    [[nodiscard]] bool isWaitedAt();

private:
    void set(bool isOpen);
    std::mutex m_mutex;
    std::condition_variable m_opened;
    bool m_isOpen = true;
    int m_waiting = 0;
};

/// Shown offscreen. The removal goes through the one door of the process, with an administrator
/// right that the test decides about.
/// The views of the page wait outside of the window until they are needed.
class PageWindow : public NamedControls {
public:
    PageWindow();
    ~PageWindow() override;
    PageWindow(const PageWindow&) = delete;
    PageWindow& operator=(const PageWindow&) = delete;

    SameFileDeleteViewController& page() { return *window->sameFileDeleteVC(); }
    UserDefaults& settings() { return m_defaults; }
    [[nodiscard]] std::string stateFolder() const { return m_settings.at("state"); }
    /// Drops the folder on the page.
    void drop(const std::string& path);
    /// Drops it and waits until the search stands before the first file that it would open; reading
    /// opens the gate.
    [[nodiscard]] bool holdSearch(const std::string& path);
    /// Drops it and waits until the result stands.
    [[nodiscard]] bool search(const std::string& path);
    /// Presses Remove, agrees, and waits until the removal is over; `meanwhile` runs when the
    /// removal has begun.
    [[nodiscard]] bool remove(const std::function<void()>& meanwhile = {});

    /// What of a widget stands on the screen, without asking it to draw itself anew.
    QImage onScreen(const QWidget& widget, const QRect& part);
    /// The list as a person reads it, a group in a line: "name state count: boxes of its copies".
    std::string list();
    QAbstractItemModel& model();
    /// What stands in the column of the names: of a copy its path.
    static std::string nameOf(const QModelIndex& row);
    /// The group of this name, or the copy of this file name in it.
    QModelIndex row(const std::string& group, const std::string& copy = {});
    /// Presses the left button in the box of the row.
    void tick(const QModelIndex& row);
    void tick(const std::string& group, const std::string& copy = {}) { tick(row(group, copy)); }

    TestTree tree;
    Gate reading;   ///< before a file is opened by a search
    Gate removing;  ///< before an entry is unlinked
    WatchedFiles files;
    FakeAuthorization authorization;
    NotificationCenter notifications;
    RecordedDialogs dialogs;
    Strings revealed;
    std::unique_ptr<DuplicateMainWindowController> window;  // ends when a test says so

protected:
    std::vector<QWidget*> places() override;

private:
    LinuxPermissions m_permissions;
    TestTree m_settings;
    UserDefaults m_defaults;
    QtMainQueue m_mainQueue;
    FileIcons m_icons;
    const std::size_t m_threads;  // of the process before anything began
};

}  // namespace orrinvale::testing
