// DiskUsageAppController: the page that shows what fills a disk. DiskUsagePlaces.cpp has its
// places, DiskUsageScanning.cpp its scans, DiskUsageColumns.cpp columns and ticks,
// DiskUsageMapping.cpp the map, DiskUsageComparing.cpp scans that are kept, DiskUsageChanges.cpp
// what changed since one, DiskUsageRemoving.cpp the removal. The decisions stand in
// engine/diskusage.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/base/NotificationCenter.h"
#include "engine/diskusage/DiskUsageScan.h"
#include "engine/diskusage/TickedCount.h"
#include "engine/diskusage/history/ScanHistory.h"
#include "engine/removal/RemovalJob.h"
#include "services/volumes/SystemWatch.h"
#include "ui/diskusage/DiskUsageLeftCell.h"
#include "ui/diskusage/FSNodeColumn.h"
#include "ui/diskusage/diskUsageNotices.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/PathAnimation.h"
#include "ui/page/FolderEntrance.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"
#include "ui/page/StateTable.h"

namespace orrinvale {

class DiskUsageViews;
class FileSystemBrowserCell;
class UsageRemoval;
struct TreemapEntry;

/// What the page works with beside the services of all pages. Nothing of it is owned.
struct DiskUsageParts {
    SystemWatch* watch = nullptr;  ///< null: there are no volumes on the left
    std::string home;              ///< the home folder, exact bytes
    QString userName;
    /// Opens a folder in the file manager, a file as that would; false when nothing can.
    std::function<bool(const std::string& path)> open;
};

/// A tree belongs to the path that was scanned, so that rows may come and go with their volumes.
/// Main thread only.
class DiskUsageAppController final : public QObject, public Page, private DragViewDelegate {
    Q_OBJECT
public:
    DiskUsageAppController(PageServices services, DiskUsageParts parts, QObject* parent = nullptr);
    ~DiskUsageAppController() override;

    [[nodiscard]] QWidget* view() const override;
    void setMainWindow(QWidget* window) override { m_mainWindow = window; }
    [[nodiscard]] bool isBusy() const override { return m_state >= State::Scanning; }
    [[nodiscard]] bool isRemoving() const override { return m_state == State::Removing; }
    void giveUp() override;
    void chooseFolder() override { clickIconAction(); }
    void takeFolder(const std::string& path) override {
        m_entrance.drop(m_mainWindow, path, false);
    }
    void viewDragAction(const std::string& path) override { takeFolder(path); }

    [[nodiscard]] bool bSearchFinished() const { return m_state != State::Scanning; }
    [[nodiscard]] bool diskUsageScaned() const { return m_diskUsageScaned; }
    [[nodiscard]] std::uint64_t allNodeSize() const { return m_allNodeSize; }
    /// Of the selected row; null where it has no scan.
    [[nodiscard]] FSNode* rootNode() const;
    /// Of each row on the left; null where it has none.
    [[nodiscard]] std::vector<FSNodeTree*> allScanArr() const;
    [[nodiscard]] const std::vector<DiskUsageLeftCell*>& leftCellArr() const {
        return m_leftCellArr;
    }
    [[nodiscard]] std::int32_t beforeSelectRow() const { return m_beforeSelectRow; }
    /// The number of the custom row, which is one past the end until that was made.
    [[nodiscard]] std::int32_t customRowNum() const;
    /// Of the item that was touched last; exact bytes.
    [[nodiscard]] const std::string& itemPath() const { return m_itemPath; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

public Q_SLOTS:
    /// Scans the selected place.
    void getLocalPath();
    void stopBtnClick();
    void clickIconAction();
    void clickBackBtn();
    /// Takes the custom row away. Throws std::out_of_range where it was not made.
    void backButtonAction();
    void openFileClick();
    void revealFinderClick();
    void removeBtnClick();
    void unlockRigths();

private:
    /// In the order of the columns in stateTable().
    enum class State : std::uint8_t { Start, Result, Scanning, Counting, Removing };
    void enter(State state);
    [[nodiscard]] StateTable stateTable() const;
    enum class ShownAs : std::uint8_t { Columns, Map, Changes };
    [[nodiscard]] bool isFree() const { return !isBusy(); }
    void connectControls();
    void connectKeys();
    void connectBrowser();
    void initNotification();
    void showTitle();
    void showFitting();

    // The places.
    void look(bool isOnScreen);
    void volumesSeen(const SystemSight& seen);
    void getLocalDiskInfo();
    void giveWayToVolumes();
    [[nodiscard]] std::vector<DiskUsageLeftCell::Place> placesNow() const;
    void makeRows(const std::vector<DiskUsageLeftCell::Place>& places);
    void updateLeftCellBackGrounImage(const ClickedPlace& clicked);
    void selectRow(std::int32_t row);
    void takeCustomFolder(const std::string& path);
    [[nodiscard]] std::int32_t rowOfPath(const std::string& path) const;
    void forwardViewForAnimation();
    void backViewForAnimation();
    void goBack();

    // Scan.
    /// A place that was scanned.
    struct Scanned {
        std::shared_ptr<ShownScan> shown;
        std::vector<Error> skipped;
        bool wasStopped = false;
        bool hasEmptied = false;                        ///< a removal took the last of it
        std::shared_ptr<const StoredScan> stored = {};  ///< null: it can not be compared
        std::vector<KeptScan> kept = {};                ///< before it
        std::optional<ScanFacts> earlier = {};          ///< of the one that is offered first
        std::optional<std::int64_t> wanted = {};        ///< the time of the one being compared
    };
    void browserFiles(const std::string& path);
    void scanNews(const UsageNews& news);
    void refreshProgress();
    void refreshColumn();
    void browseFilesFinished();
    void tellIfEmpty();
    void scanAgain(std::vector<FSNode*> folders);
    [[nodiscard]] Scanned* current();
    void showTree();

    // Columns and ticks.
    void willDisplayCell(FileSystemBrowserCell& cell, const QModelIndex& row);
    [[nodiscard]] static FSNode* nodeOf(const QModelIndex& row);
    void boxClicked(FSNode* node);
    void getSelectRowPath(const std::string& path);
    void chosenChanged();
    void refRemoveButtonState();
    void removeBtnState(bool isOn);
    void flyFileAnimation(const FSNode* node);
    void allThreadFinishCallBack();
    void showRowMenu(FSNode* node, QPoint position);
    void showAs(ShownAs look);
    void showMapFolder();
    void mapHovered(const TreemapEntry* entry);
    void showMapLine(const FSNode* node);
    void goTo(const FSNode& node);
    void goUp();
    void connectMap();
    [[nodiscard]] QIcon iconOf(const FSNode& node) const;

    // Comparison.
    void connectChanges();
    void rememberScan();
    [[nodiscard]] Scanned* scannedOf(const std::weak_ptr<ShownScan>& shown);
    void refreshComparing();
    void showCompareMenu();
    void compareWith(std::int64_t time);
    [[nodiscard]] static std::unique_ptr<ColumnModel> changesColumn(
        const std::shared_ptr<ShownScan>& shown);
    void showChanges();
    void endComparison();
    [[nodiscard]] bool showsChanges() const;
    [[nodiscard]] QString changesTitle() const;
    [[nodiscard]] QString compareTip(const Scanned* scanned) const;
    [[nodiscard]] QString grownText(const Scanned* scanned) const;
    void compareWithOffered();
    void comparisonFailed(const Scanned& scanned, const std::string& reason);
    void askToForget();
    void forgetScans(const std::weak_ptr<ShownScan>& of);
    void willDisplayChange(FileSystemBrowserCell& cell, const QModelIndex& row);
    [[nodiscard]] QString markOf(const FSNode& node) const;
    void goToChange(std::uint32_t number);
    void showChangeMenu(std::uint32_t number, QPoint position);

    // Removal.
    void countTickedNow();
    void countingEnded(const std::shared_ptr<TickedCount>& ended,
                       const std::weak_ptr<ShownScan>& of);
    void askToRemove(std::shared_ptr<TickedCount> ended);
    void firstAlertEnded(int code, const std::shared_ptr<TickedCount>& ended);
    void removalNews();
    void removalEnded(const RemovalOutcome& outcome);
    void showRemoved();
    void delayTimer(const RemovalOutcome& outcome);
    void tellNothingGoes(const TickedCount& ended);
    void forgetSkipped(const std::vector<FSNode*>& gone);
    void showSkipped();
    void showFailures();

    const PageServices m_parts;
    const DiskUsageParts m_own;
    std::unique_ptr<DiskUsageViews> m_views;
    QPointer<QWidget> m_mainWindow;
    FolderEntrance m_entrance;
    const StateTable m_controls;
    State m_state = State::Start;
    std::vector<NotificationCenter::Observation> m_observations;
    SystemWatch::Observation m_watching;  // null while nobody sees the page

    SystemSight m_localDiskArr;  // that the rows were made for, or will be when nothing runs
    bool m_hasNewVolumes = false;
    std::vector<DiskUsageLeftCell*> m_leftCellArr;  // owned by the rail
    std::string m_pathStrDrag;                      // of the custom row; empty: there is none
    std::int32_t m_beforeSelectRow = -1;
    std::string m_selectedPath;  // of that row; empty: none
    std::string m_itemPath;

    std::map<std::string, Scanned, std::less<>> m_scans;  // by path
    std::unique_ptr<DiskUsageScan> m_scan;                // the running one
    bool m_isRescan = false;                              // of folders in a tree that stands
    std::set<std::string, std::less<>> m_rescanned;       // their paths
    std::uint64_t m_shownSteps = 0;
    QTimer m_refreshTimer;
    QTimer m_reloadTimer;
    bool m_diskUsageScaned = false;
    std::uint64_t m_allNodeSize = 0;

    ShownAs m_shownAs = ShownAs::Columns;
    PathAnimation m_flight;
    std::shared_ptr<UsageCounts> m_counting;  // null while nothing is counted
    std::vector<FSNode*> m_delNodesArr;       // what is ticked, and then what goes
    std::shared_ptr<UsageRemoval> m_removalList;
    std::unique_ptr<RemovalJob> m_removal;
    std::vector<FSNode*> m_partly;  // folders of which a removal took a part
    RemovalOutcome m_outcome;       // of the last removal of the tree on show
};

}  // namespace orrinvale
