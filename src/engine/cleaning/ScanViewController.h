// ScanViewController: the list of one category: its scan, its ticks, its clean. The pages show it;
// ScanErrand scans, RemovalJob removes.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/base/notices.h"
#include "engine/cleaning/CategoryScan.h"
#include "engine/cleaning/CleanFileInfo.h"
#include "engine/cleaning/SpaceGain.h"
#include "engine/removal/RemovalJob.h"

namespace orrinvale {

class TreeNode;

/// A tick changed: the state of the row, or of the last row of the list; and nothing at the end of
/// a scan. `startButton` is what was clicked, where the whole list was.
struct CleanSelection {
    std::optional<bool> state{};
    std::any startButton{};
    bool isAnimated = false;
};
struct UntickedRow {
    std::int32_t row = 0;
    bool isSelect = false;
};

template <> struct NoticeForm<CleanSelection> {
    static Notification write(std::string name, const CleanSelection& payload);
    static std::optional<CleanSelection> read(const Notification& notice);
};
template <> struct NoticeForm<UntickedRow> {
    static Notification write(std::string name, const UntickedRow& payload);
    static std::optional<UntickedRow> read(const Notification& notice);
};

inline constexpr Notice<CleanSelection> cleanShowSelectNumInBottomNotice{
    "cleanShowSelectNumInBottom"};
inline constexpr Notice<UntickedRow> selectedRowInFastClean{"selectedRowInFastClean"};

inline constexpr const char* KVO_CONTEXT_SCAN_FINISH = "KVO_CONTEXT_SCAN_FINISH";
inline constexpr const char* KVO_CONTEXT_CLEAN_FINISH = "KVO_CONTEXT_CLEAN_FINISH";

struct ScanViewParts {
    CleanParts clean;
    NotificationCenter* notifications = nullptr;
    MainQueue* mainQueue = nullptr;
    std::string stateFolder;  ///< where removals take turns
    /// Called on the removing thread; QnAuthorization::makeDoorForFiles() or makeDoor().
    std::function<std::unique_ptr<RemovalDoor>()> makeDoor;
    /// Opens a folder in the desktop's file manager.
    std::function<void(const std::string& folder)> openFolder = {};
};

/// Main thread only, where all notices come as well. Six of them may scan and clean side by side.
class ScanViewController final {
public:
    using Rows = std::vector<std::shared_ptr<CleanFileInfo>>;

    explicit ScanViewController(ScanViewParts parts);
    ~ScanViewController();
    ScanViewController(const ScanViewController&) = delete;
    ScanViewController& operator=(const ScanViewController&) = delete;

    // What can be observed, each by its name. The handler gets the context that it was registered
    // with, and the new value; of scanFiles that they changed. Told at each change: the total at
    // most every 50 ms while a scan runs.
    static constexpr Notice<std::string> filesSizeChange{"filesSize"};
    static constexpr Notice<bool> scanFinishedChange{"scanFinished"};
    static constexpr Notice<bool> cleanFinishedChange{"cleanFinished"};
    static constexpr Notice<bool> scanFilesChange{"scanFiles"};
    template <class Value>
    [[nodiscard]] NotificationCenter::Observation addObserver(
        const Notice<Value>& key, std::string context,
        std::function<void(const std::string& context, const Value& value)> handler) {
        return key.observe(m_changes, [context = std::move(context), handler = std::move(handler)](
                                          const Value& value) { handler(context, value); });
    }

    /// Scans these folders anew. A scan that is silent for 5 seconds counts as ended, and what it
    /// says later is dropped.
    void beginScanTask(std::vector<std::string> folders);
    /// The same where even the names are asked of the disk, on the thread of the scan;
    /// `folderPaths` stays empty. `run` is shared by scans that begin together.
    void beginScanTask(std::function<std::vector<std::string>()> folders,
                       std::shared_ptr<FoldersOfRun> run = nullptr);
    /// What is complete stays in the list.
    void cancelScanTask();
    /// Empties the list as one change; no effect while there is none.
    void refreshTableView();
    /// Removes the ticked rows. Each is asked about again; one that a rule keeps by now leaves the
    /// list, since it is none of what may go. `gain`, which may be null, is begun when its turn has
    /// come; cleans that run side by side may share one.
    void beginCleanTask(std::shared_ptr<SpaceGain> gain = nullptr);
    /// The same, of the ticked rows only these, which are in the order of the list.
    void beginCleanTask(const Rows& chosen, std::shared_ptr<SpaceGain> gain);
    /// Ends the clean before its next entry, for whoever stops it and for the end of the program.
    /// Does nothing while there is none.
    void stopClean();
    /// How far the clean is; nothing while there is none.
    [[nodiscard]] RemovalJob::Progress cleanProgress() const;
    /// Takes the row out of the list, as what a person wants to keep from now on. Does nothing
    /// while a scan or a clean runs, and for a path that is no row.
    void leaveOut(const std::string& path);
    /// Changes nothing: a clean that was begun goes on to its end.
    void cancelFastClean() {}

    void setAllCheckBoxSelect() { setAll(true); }
    void setNoCheckBoxSelect() { setAll(false); }
    /// 0 none, 1 all, 2 some; stored for the category aTag, where another value stands.
    std::int32_t getSelectAllOrNull();
    /// Builds selDelFiles of the ticked rows. A text that is not empty takes the list's own tick.
    void getSelectPath(std::string_view text);

    /// A click on the box of a row.
    void toggleRow(std::size_t row);
    /// The box's own action: its next state.
    bool CellClick(bool state, std::int32_t row);
    /// Opens the folder that shows the row.
    void openFinder(std::size_t row) const;
    /// The box above the list, in its new state.
    void cleanShowSelectNumInBottom(bool state, std::any startButton = {});

    [[nodiscard]] bool isScanning() const { return m_scan != nullptr; }
    [[nodiscard]] bool isCleaning() const { return m_clean != nullptr; }
    /// Whether any list of the program is.
    [[nodiscard]] static bool isAnyCleaning() { return s_cleaning > 0; }
    /// Whether the last scan was cancelled while it ran, so that more may be there.
    [[nodiscard]] bool wasStopped() const { return m_isStopped; }
    /// What filesSize tells, in bytes: of all rows, or up to now.
    [[nodiscard]] std::uint64_t totalBytes() const { return m_total; }
    /// What stays of the scanned folders, and why; the folders that were left alone.
    [[nodiscard]] const CategoryListing& listing() const { return m_listing; }
    /// What became of the last clean; nothing while there was none.
    [[nodiscard]] const std::optional<RemovalOutcome>& lastOutcome() const { return m_outcome; }
    /// Where these rows stand in the list and in listing(), in whose order they are; of one that is
    /// not there, and of all behind it, nothing.
    [[nodiscard]] std::vector<std::size_t> placesOf(const Rows& some) const;
    /// The rows as the group of a tree, which the scan has made along, without a name and without
    /// ticks. Null once it was taken, or where the rows are others since.
    [[nodiscard]] std::shared_ptr<TreeNode> takeGroup();
    /// The rows that the last clean took as a whole, by their paths.
    [[nodiscard]] const std::vector<std::string>& cleanedRows() const { return m_cleanedRows; }

    std::vector<std::string> folderPaths;
    std::optional<Rows> scanFiles;  ///< nothing until the first scan has ended
    std::optional<bool> scanFinished;
    std::string filesSize;
    bool selectButton = false;  ///< the state of the box above the list
    std::optional<bool> cleanFinished;
    std::uint64_t iCleanSize = 0;  ///< bytes that the current clean has removed
    std::string dicKeyStr;         ///< the category's index, for the page
    std::int32_t aTag = 0;         ///< the category whose setting follows the ticks; -1 for none
    Rows selDelFiles;
    bool isSlected = false;  ///< the row that was toggled last

private:
    class Scan;
    class Clean;
    struct Left {
        Rows infos;
        std::vector<CleanRow> rows;
    };
    // Whether the list is that of listing(), row by row.
    [[nodiscard]] bool isListed() const {
        return scanFiles && scanFiles->size() == m_listing.rows.size();
    }
    void setAll(bool isTicked);
    void setFilesSize(std::uint64_t bytes);
    void scanTaskFinished(CategoryListing listing, Rows rows, std::shared_ptr<TreeNode> group);
    [[nodiscard]] Left dropRows(const std::vector<bool>& isLeaving);
    void recount();
    void tellTotal();

    void begin(std::shared_ptr<SpaceGain> gain);
    void forgetPlaces();
    void takeCleanNews();
    void rowIsGone(std::size_t row);
    void countGone(std::uint64_t bytes);
    void finishClean();
    void shrinkRow(std::size_t place, std::uint64_t gone);

    static inline int s_cleaning = 0;  // cleans that are under way
    const ScanViewParts m_parts;
    NotificationCenter m_changes;
    CategoryListing m_listing;  // of what is in the list by now
    std::uint64_t m_total = 0;
    bool m_isStopped = false;
    std::shared_ptr<TreeNode> m_group;  // of the rows, as long as nobody has taken it
    std::shared_ptr<Scan> m_scan;
    std::shared_ptr<Clean> m_clean;
    std::optional<RemovalOutcome> m_outcome;
    std::vector<std::string> m_cleanedRows;
};

}  // namespace orrinvale
