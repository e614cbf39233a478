// CleanDesk: the cleaning page in the toolbar window, over a made-up home.
#pragma once

#include <map>
#include <set>

#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/LockedDoor.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/settings/UserDefaults.h"
#include "platform/ForwardingFiles.h"
#include "platform/fake/FakeAuthorization.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/fake/MadeUpFolders.h"
#include "platform/linux/LinuxPermissions.h"
#include "services/foundation/QtMainQueue.h"
#include "support/SteadyVolumes.h"
#include "support/test.h"
#include "ui/cleaning/NewMainViewController.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/support/NamedControls.h"
#include "ui/support/PageWindow.h"
#include "ui/support/RecordedDialogs.h"

namespace orrinvale::testing {

/// The files of a home, whose scans wait at the folders that the test names.
class HeldFolders final : public ForwardingFiles {
public:
    explicit HeldFolders(const FileSystem& files) : ForwardingFiles(files) {}
    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override;
    /// By their paths.
    void hold(const std::string& folder);
    void letGo(const std::string& folder);
    void letAllGo();

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::set<std::string> m_held;
};

/// Offscreen. Everything in the home was written an hour ago.
class CleanDesk : public NamedControls {
public:
    using State = MainViewController::State;

    /// `files` are in the home at first. `secondsLater`: so long ago they were written, for who
    /// asks. With `hasSheets` questions are sheets of the window, and not in `dialogs`.
    explicit CleanDesk(std::initializer_list<std::pair<const char*, std::size_t>> files = {},
                       std::int64_t secondsLater = 3600, bool hasSheets = false);
    ~CleanDesk() override;
    CleanDesk(const CleanDesk&) = delete;
    CleanDesk& operator=(const CleanDesk&) = delete;

    /// A file of this many bytes, below the home.
    void write(const std::string& name, std::size_t bytes);
    [[nodiscard]] bool has(const std::string& name) const { return isThere(home.tree.at(name)); }
    void tickOnly(std::initializer_list<CleanCategory> categories);
    /// Presses Scan on the first view, and waits for the lists.
    [[nodiscard]] bool scan();
    [[nodiscard]] bool waitForRest();
    [[nodiscard]] MainViewController::State state() const { return page->state(); }
    [[nodiscard]] ScanViewController& list(CleanCategory category) const;
    /// The outline as a person reads it: "TITLE n/m SIZE: boxes of its rows", a line each.
    [[nodiscard]] std::string outline();
    [[nodiscard]] std::string sentence(const char* label);
    [[nodiscard]] std::string settings() const;
    [[nodiscard]] std::uint64_t noted() const {
        return ParseFileLog(home.tree.at("state")).getSize(nullptr);
    }
    /// Presses the box of a row of a list or of the outline.
    void tick(QTreeView& list, const QModelIndex& row);
    [[nodiscard]] QModelIndex rowOf(QTreeView& list, const std::string& name) const;
    std::vector<QWidget*> places() override;

    CleanHome home;
    HeldFolders held{home.files};
    MadeUpFolders folders{home.folders, home.tree.path()};
    FolderUtilities utilities{held, folders, [] { return std::vector<std::string>{"/"}; }};
    UserDefaults defaults{home.tree.at("settings.ini")};
    NotificationCenter center;
    RecordedDialogs dialogs;
    WindowDialogs sheets;
    QtMainQueue queue;
    FakeAuthorization authorization;
    LinuxPermissions permissions;
    FakeVolumes platform;
    CountedMemory memory;
    std::unique_ptr<SystemWatch> watch;
    std::unique_ptr<Ejections> ejections;
    Gate removing;          ///< before an entry is unlinked
    bool isLocked = false;  ///< names that begin with "locked" want the administrator right
    std::atomic<std::uint64_t> free{1'000'000'000};
    std::vector<std::string> opened, revealed;
    std::unique_ptr<AppPrefsWindowController> window;
    NewMainViewController* page = nullptr;
};

}  // namespace orrinvale::testing
