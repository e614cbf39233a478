// SameFileDeleteViewController: the page of the duplicate finder. Four sources: this class's
// search, SameFileDeleteTicks.cpp its boxes and titles, SameFileDeleteRemoval.cpp its removal,
// SameFileDeleteRows.cpp what is done with one row. The decisions stand in
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
#include <string>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/base/NotificationCenter.h"
#include "engine/duplicates/results/DuplicateSelection.h"
#include "engine/duplicates/results/LeafSort.h"
#include "engine/duplicates/results/ResultViews.h"
#include "engine/removal/RemovalJob.h"
#include "platform/files.h"
#include "ui/kit/controls/DragView.h"
#include "ui/kit/controls/PathAnimation.h"

namespace orrinvale {

class Dialogs;
struct Alert;
class DuplicateFilesOpt;
class DuplicateResultModel;
class SameFileDeleteViews;
class ThreadWorker;
class UserDefaults;
struct PageRemoval;

/// What the page asks of the window that it stands in.
class SameFileDeleteViewControllerDelegate {
public:
    virtual ~SameFileDeleteViewControllerDelegate() = default;
    virtual void changeToProgressView() {}
    virtual void changeToDetailView() {}
    virtual void backButtonAction() {}
    /// Exact bytes; of a group those of its first copy.
    virtual void pereviewFileWithFileNodePath(const std::string& path) { static_cast<void>(path); }

protected:
    SameFileDeleteViewControllerDelegate() = default;
    SameFileDeleteViewControllerDelegate(const SameFileDeleteViewControllerDelegate&) = default;
    SameFileDeleteViewControllerDelegate& operator=(const SameFileDeleteViewControllerDelegate&) =
        default;
};

/// What the page works with. Nothing of it is owned; all of it outlives the page.
struct SameFileDeleteParts {
    const FileSystem* files = nullptr;
    NotificationCenter* notifications = nullptr;
    UserDefaults* defaults = nullptr;
    Dialogs* dialogs = nullptr;
    MainQueue* mainQueue = nullptr;
    std::string stateFolder;  ///< where removals keep their journal; empty: nothing is set aside
    std::function<QIcon(const IconRequest&)> icons;
    std::function<void(const std::string& path)>
        reveal;  ///< shows the entry in the desktop's file manager
    std::function<void(const QString& address)> openAddress;  ///< opens a web page
};

/// Main thread only. A search or a removal under way when the page ends is asked to stop, and its
/// thread ends by itself.
class SameFileDeleteViewController final : public QObject,
                                           private DragViewDelegate,
                                           private PathAnimationDelegate {
    Q_OBJECT
public:
    explicit SameFileDeleteViewController(SameFileDeleteParts parts, QObject* parent = nullptr);
    ~SameFileDeleteViewController() override;

    [[nodiscard]] QWidget* view() const;
    [[nodiscard]] QWidget* progressageView() const;
    [[nodiscard]] QWidget* detailView() const;

    void setMainWindow(QWidget* window) { m_mainWindow = window; }
    void setDelegate(SameFileDeleteViewControllerDelegate* delegate) {
        m_delegate = delegate;
    }  ///< not owned

    [[nodiscard]] bool duplicateScaned() const { return m_duplicateScaned; }
    void setDuplicateScaned(bool scaned) { m_duplicateScaned = scaned; }
    [[nodiscard]] bool bSearchFinished() const { return m_bSearchFinished; }
    /// From half a second after the person's yes, when the first entry goes, to the end of the
    /// removal.
    [[nodiscard]] bool isRemoving() const { return m_removalTimer.isActive(); }
    [[nodiscard]] const std::string& searchPath() const { return m_searchPath; }

    /// Searches a folder, as if it had been dropped. Does nothing when it is none, or while
    /// something runs. Where the result on the screen has ticks the person is asked first.
    void viewDragAction(const std::string& path) override { folderDropped(path, false); }
    void viewDragActionOfSeveral(const std::string& path) override { folderDropped(path, true); }

    /// Goes on to the next row that stands for another file, or with -1 to the one before, and
    /// gives its path; empty where there is none.
    [[nodiscard]] std::string previewBeside(int step);

public Q_SLOTS:
    void clickScanBtn();
    void searchBtnClicked();
    void stopScanBtnClicked();
    void backButtonAction();
    void openFinderBtnClicked();
    void RevealInFinderBtnClicked();
    void setAllSelectOrNoSelect();
    void removeBtnClicked();
    void stopRemoveBtnClicked();
    void unlockRigths();
    void openHttpOfQuennet();

private:
    // Search.
    void connectControls();
    void folderDropped(const std::string& path, bool isOneOfSeveral);
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

    // Boxes and titles.
    void refViewBgColor(std::int32_t row);
    void showSelectCountWithFileCount(std::size_t count, const QString& pathName);
    void setSelectCount();
    void boxClicked(const TreeNode::Pointer& node, const QModelIndex& index);
    void setSelectState(const TreeNode::Pointer& leaf);
    void alertEnded_context(int code, const TreeNode::Pointer& leaf, std::uint64_t resultNumber);
    void fly(const TreeNode::Pointer& leaf);
    void callBackDeleteItemWithIndex() override;
    void setRemoveButtonState();
    void showGain();
    [[nodiscard]] Alert questionAboutTicked() const;
    void changeAllSelectCheckBoxState();
    void forgetClearedKinds();
    [[nodiscard]] bool isTickedByHeader() const;
    void setTickedByHeader(bool on);
    void updateCheckBox();
    void showHeaderBox(const HeaderBox& box);
    /// What the titles call the view of a row: its kind, or the folder that was searched.
    [[nodiscard]] QString rowLabel(std::int32_t row) const;

    // Removal.
    void alertEnded_aContext(int code);
    void doRemoveDuplicateAction();
    void delDuplicateItems();
    void deleteUpView();
    void removalNews();
    void refreshOutlineView(const std::vector<RemovalJob::Settled>& settled);
    void deleteFinished();
    void showRemovalEnded();
    void alertCanNotRemoveSome();
    void showFailures();
    void changeLockState();

    // One row.
    void shouldSelectItem(const QModelIndex& index);
    [[nodiscard]] std::string pathOf(const QModelIndex& index) const;
    void didClickTableColumn(int column);
    void sortTree(int column);
    void showSortIndicator();
    void sortFurther();
    void finishSorting();
    void showRowMenu(const QModelIndex& index, QPoint position);
    [[nodiscard]] QIcon iconOf(const TreeNode& node) const;

    SameFileDeleteParts m_parts;
    std::unique_ptr<SameFileDeleteViews> m_views;
    std::unique_ptr<DuplicateResultModel> m_model;
    SameFileDeleteViewControllerDelegate* m_delegate = nullptr;
    QPointer<QWidget> m_mainWindow;
    std::vector<NotificationCenter::Observation> m_observations;

    ResultViews m_results;
    std::uint64_t m_resultNumber =
        0;  // of the result that m_results holds; questions that outlive theirs are void
    DuplicateSelection m_selection;
    LeafSort m_leafSort;
    QTimer m_sortTimer;              // runs while copies are still to be sorted
    TreeNode* m_treeData = nullptr;  // the tree that the list shows, of m_results
    std::int32_t m_remberWitchSelect = 0;
    std::shared_ptr<DuplicateFilesOpt> m_duplicateOpt;
    std::shared_ptr<ThreadWorker> m_twDuplicateSearch;
    std::shared_ptr<ThreadWorker> m_unlocking;
    std::unique_ptr<PageRemoval> m_removal;  // the running or the last one
    std::string m_searchPath;
    std::string m_openItemPath;
    QTimer m_newTimer;
    QTimer m_removalTimer;
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
    bool m_bSearchFinished = true;
    bool m_isStopScan = false;
    bool m_isClickStopRemove = false;
    bool m_duplicateScaned = false;
    std::int32_t m_progressNum = 1;
    int m_highestPercent = 0;  // that the running search has shown
};

}  // namespace orrinvale
