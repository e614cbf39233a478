// SameFileDeleteViewController: the page of the duplicate finder. Ten sources: this class's
// search, SameFileDeleteTicks.cpp its boxes and titles, SameFileDeleteKeeping.cpp the ticks of
// whole views by rule and folder, SameFileDeleteRemoval.cpp its removal, SameFileDeleteTrash.cpp
// the way to the trash and back, SameFileDeleteSharing.cpp what shares its space instead,
// SameFileDeleteSheets.cpp plans and history, SameFileDeleteRows.cpp what is done with one row,
// SameFileDeleteFolders.cpp the look of the list. The decisions stand in
// engine/duplicates/results.
#pragma once

#include <QIcon>
#include <QObject>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QTimer>
#include <array>
#include <bitset>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/base/NotificationCenter.h"
#include "engine/duplicates/keep/KeepTicks.h"
#include "engine/duplicates/plan/makePlan.h"
#include "engine/duplicates/results/DuplicateSelection.h"
#include "engine/duplicates/results/LeafSort.h"
#include "engine/duplicates/results/ResultViews.h"
#include "engine/duplicates/scope/NamedSearches.h"
#include "engine/removal/RemovalJob.h"
#include "platform/fileTypes.h"
#include "ui/duplicates/FolderOpening.h"
#include "ui/duplicates/HistoryDesk.h"
#include "ui/duplicates/PlanDesk.h"
#include "ui/duplicates/ShareErrand.h"
#include "ui/duplicates/UndoErrand.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/PathAnimation.h"
#include "ui/page/FolderEntrance.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"
#include "ui/page/StateTable.h"

class QMenu;

namespace orrinvale {

struct Alert;
class DuplicateFilesOpt;
class DuplicateResultModel;
class SameFileDeleteViews;
class ScopePanel;
class ThreadWorker;
class UserDefaults;
struct PageRemoval;

/// What the page asks of the window that it stands in.
class SameFileDeleteViewControllerDelegate : public PageDelegate {
public:
    virtual void changeToProgressView() {}
    virtual void changeToDetailView() {}
    virtual void backButtonAction() {}
};

/// Main thread only. A search or a removal under way when the page ends is asked to stop, and its
/// thread ends by itself.
class SameFileDeleteViewController final : public QObject,
                                           public Page,
                                           private DragViewDelegate,
                                           private PathAnimationDelegate {
    Q_OBJECT
public:
    explicit SameFileDeleteViewController(PageServices services, QObject* parent = nullptr);
    ~SameFileDeleteViewController() override;

    [[nodiscard]] QWidget* view() const override;
    [[nodiscard]] QWidget* progressageView() const;
    [[nodiscard]] QWidget* detailView() const;

    void setMainWindow(QWidget* window) override { m_mainWindow = window; }
    void setDelegate(SameFileDeleteViewControllerDelegate* delegate) {
        m_delegate = delegate;
    }  ///< not owned

    [[nodiscard]] bool duplicateScaned() const { return m_duplicateScaned; }
    void setDuplicateScaned(bool scaned) { m_duplicateScaned = scaned; }
    /// Nothing runs, so that ticks, rows and folders can be had.
    [[nodiscard]] bool bSearchFinished() const {
        return !m_isAtDesk &&
               (m_state == State::Start || m_state == State::Stopped || m_state == State::Result);
    }
    /// From half a second after the person's yes, when the first entry goes, to the end of the
    /// removal; and while something comes back.
    [[nodiscard]] bool isRemoving() const override {
        return m_state == State::Removing || m_state == State::StoppingRemoval ||
               m_state == State::Undoing || m_isAtDesk;
    }
    [[nodiscard]] bool isBusy() const override { return !bSearchFinished(); }
    void giveUp() override;
    void chooseFolder() override { clickScanBtn(); }
    [[nodiscard]] const std::string& searchPath() const { return m_searchPath; }

    /// Searches a folder, as if it had been dropped. Does nothing when it is none, or while
    /// something runs. Where the result on the screen has ticks the person is asked first.
    void viewDragAction(const std::string& path) override { takeFolder(path); }
    void viewDragActionOfSeveral(const std::string& path) override {
        m_entrance.drop(m_mainWindow, path, true);
    }
    void takeFolder(const std::string& path) override {
        m_entrance.drop(m_mainWindow, path, false);
    }

    /// The next row is one that stands for another file.
    [[nodiscard]] std::string previewBeside(int step) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

public Q_SLOTS:
    void clickScanBtn();
    /// Opens the sheet for a search in several folders, with these in it.
    void openScope(const std::vector<std::string>& paths = {});
    void searchBtnClicked();
    void stopScanBtnClicked();
    void backButtonAction();
    void openFinderBtnClicked();
    void RevealInFinderBtnClicked();
    void setAllSelectOrNoSelect();
    void removeBtnClicked();
    void showWayMenu();
    /// Asks, and lets what is ticked have its bytes in common with the copies that stay.
    void shareTicked();
    void undoBtnClicked();
    /// Searches what was searched last.
    void searchAgain();
    void showMoreMenu();
    void savePlan();
    void openPlan();
    void showHistory();
    void openPlaces();
    void stopRemoveBtnClicked();
    void unlockRigths();
    void openHttpOfQuennet();

private:
    /// In the order of the columns in stateTable().
    enum class State : std::uint8_t {
        Start,
        Searching,
        Stopping,  ///< the person has stopped the search
        Stopped,   ///< and it has ended
        Ending,    ///< a search that nobody stopped has ended, its result comes within a second
        Result,
        Agreed,  ///< what is ticked goes within half a second
        Removing,
        StoppingRemoval,
        Undoing,  ///< what went to the trash comes back
    };
    void enter(State state);
    [[nodiscard]] StateTable stateTable() const;
    [[nodiscard]] bool isStopScan() const {
        return m_state == State::Stopping || m_state == State::Stopped;
    }

    // Search.
    void connectControls();
    void searchFolder(const std::string& path, bool isOneOfSeveral);
    void updatePathString(const std::string& path);
    void forwardViewForAnimation();
    void backViewForAnimation();
    void getPathForSreachDuplicate();
    void getPrograss();
    void showPercent(int percent);
    void searchFinished(ResultViews found);
    void constructSubtrees();
    void delayBtnChangeStateTime();
    void showSameFileSize();
    [[nodiscard]] ResultViews resetOulineView();
    void showFitting();
    void showSkipped();

    // Several folders.
    [[nodiscard]] NamedSearches keptScopes() const;
    void showKeptScopes();
    void saveScope(const SearchScope& scope);
    void changeScopes(const std::optional<SearchScope>& saved);
    void searchScope(const SearchScope& scope);
    void searchRequest(SearchRequest request);
    void showCovered(const std::vector<CoveredRoot>& covered);

    // Boxes and titles.
    void refViewBgColor(std::int32_t row);
    void showSelectCountWithFileCount(std::size_t count, const QString& pathName);
    void setSelectCount();
    [[nodiscard]] QString selectedWords(bool isAnything) const;
    void boxClicked(const TreeNode::Pointer& node, const QModelIndex& index);
    void setSelectState(const TreeNode::Pointer& leaf);
    [[nodiscard]] QString whatTicksTake(const TreeNode& leaf) const;
    void alertEnded_context(int code, const TreeNode::Pointer& leaf, std::uint64_t resultNumber);
    void fly(const TreeNode::Pointer& leaf);
    void callBackDeleteItemWithIndex() override;
    void setRemoveButtonState();
    void showGain();
    void changeAllSelectCheckBoxState();
    void forgetClearedKinds();
    [[nodiscard]] bool isTickedByHeader() const;
    void setTickedByHeader(bool on);
    void updateCheckBox();
    void showHeaderBox(const HeaderBox& box);
    /// What the titles call the view of a row: its kind, or the folder that was searched.
    [[nodiscard]] QString rowLabel(std::int32_t row) const;

    // Ticks of a whole view.
    void showKeepMenu();
    void showViewMenu();
    void showFolders(bool on);
    void orderBy(bool isGainFirst);
    static void orderResult(const ResultViews& found, bool isGainFirst);
    struct TickedFolders {
        std::size_t folders = 0;
        std::uint64_t files = 0;  // in all of them
    };
    [[nodiscard]] TickedFolders tickedFolders() const;
    [[nodiscard]] const FolderFindings* foundFolders() const;
    void showPartly();
    [[nodiscard]] SearchRequest requestFor(const PartlyEqual& pair) const;
    [[nodiscard]] QString folderConsequence() const;
    void keepBy(KeepRule rule);
    void chooseKeptFolder();
    [[nodiscard]] std::string folderOfRow(const QModelIndex& index) const;
    void addFolderActions(QMenu& menu, const std::string& folder);
    void beginTicks();
    void tickFurther();
    void finishTicks();
    void showTicks();
    void tellOfEmptyFolder();

    // To the trash and back.
    void showWays();
    void ask(bool isToTrash);
    [[nodiscard]] Alert questionAboutTicked(bool isToTrash) const;
    [[nodiscard]] QStringList consequences() const;
    [[nodiscard]] PlanOrigin planOrigin() const;
    void whenTicksMayGo(std::function<void()> then);
    void undoEnded(const UndoErrand::Result& result);

    // Sharing the space.
    void askAboutSharing(const ShareOutlook& outlook);
    void beginSharing(const std::shared_ptr<ShareList>& list, bool mayLink);
    void sharingNews();
    void sharingEnded();

    // Plans and history.
    void connectDesks();
    void deskChanged();
    void takeOutGone(const std::vector<PlanDesk::Settled>& settled);
    void removeFromList(const std::vector<TreeNode::Pointer>& leaves);
    void tickGoneToo(TreeNode& group, std::span<const std::uint8_t> gone);
    void withoutLinks(const std::string& folder,
                      std::function<void(const std::string& resolved)> then);

    // Removal.
    void alertEnded_aContext(int code);
    void agree(bool isToTrash);
    void doRemoveDuplicateAction();
    void delDuplicateItems();
    void showRemoving();
    void deleteUpView();
    void removalNews();
    void refreshOutlineView(const std::vector<RemovalJob::Settled>& settled);
    void takeOutBelowGone();
    void deleteFinished();
    void showRemovalEnded();
    void alertCanNotRemoveSome();
    void showFailures();

    // One row.
    void openFolder(const QModelIndex& index);
    void closeFolder(const QModelIndex& index);
    void toggleFolder(std::uint64_t resultNumber);
    void shouldSelectItem(const QModelIndex& index);
    [[nodiscard]] std::string pathOf(const QModelIndex& index) const;
    void didClickTableColumn(int column);
    void sortTree(int column);
    void showSortIndicator();
    void sortFurther();
    void finishSorting();
    void showRowMenu(const QModelIndex& index, QPoint position);
    [[nodiscard]] QIcon iconOf(const TreeNode& node) const;

    const PageServices m_parts;
    std::unique_ptr<SameFileDeleteViews> m_views;
    std::unique_ptr<DuplicateResultModel> m_model;
    std::unique_ptr<FolderOpening> m_opening;
    SameFileDeleteViewControllerDelegate* m_delegate = nullptr;
    QPointer<QWidget> m_mainWindow;
    FolderEntrance m_entrance;
    const StateTable m_controls;
    State m_state = State::Start;
    QString m_viewCount;  // the first half of the title: how many files the view has
    std::vector<NotificationCenter::Observation> m_observations;

    ResultViews m_results;
    std::uint64_t m_resultNumber =
        0;  // of the result that m_results holds; questions that outlive theirs are void
    DuplicateSelection m_selection;
    KeepTicks m_keepTicks{m_selection};
    KeepRules m_keepRules;  // the one chosen last first; the others order what it leaves equal
    QTimer m_keepTimer;     // runs while groups are still to be ticked
    std::vector<std::string> m_bestPlaces;  // as they were ordered last
    LeafSort m_leafSort;
    QTimer m_sortTimer;              // runs while copies are still to be sorted
    TreeNode* m_treeData = nullptr;  // the tree that the list shows, of m_results
    std::int32_t m_remberWitchSelect = 0;
    std::shared_ptr<DuplicateFilesOpt> m_duplicateOpt;
    std::shared_ptr<ThreadWorker> m_twDuplicateSearch;
    std::unique_ptr<PageRemoval> m_removal;  // the running or the last one
    UndoErrand m_undoing{m_parts};
    PlanDesk m_plans{m_parts};
    HistoryDesk m_history{m_parts};
    ShareErrand m_sharing{m_parts};
    bool m_isAtDesk = false;      // something goes or comes back in one of their sheets
    bool m_isTrashFirst = false;  // as the buttons show it
    std::string m_searchPath;
    SearchRequest m_request;  // its first folder is m_searchPath
    SearchScope m_lastScope;  // that the sheet begins with
    QPointer<ScopePanel> m_scopePanel;
    std::string m_openItemPath;
    QTimer m_newTimer;
    QTimer m_removalTimer;
    QTimer m_removalDelay;  // from the person's yes to the first entry
    PathAnimation m_flight;
    QPersistentModelIndex m_checkBoxItem;  // the row whose box was clicked last
    /// How the list of each row on the left was sorted; a result comes unsorted.
    struct Sorting {
        int column;
        Qt::SortOrder order;
    };
    std::array<std::optional<Sorting>, resultRows.size()> m_sortings;
    int m_lastColumn = -1;
    std::bitset<7> m_tickedByHeader;  // by kind: a header box was switched on over it, and nothing
                                      // has cleared it since
    bool m_sortDescending = false;
    bool m_duplicateScaned = false;
    std::int32_t m_progressNum = 1;
    int m_highestPercent = 0;  // that the running search has shown
};

}  // namespace orrinvale
