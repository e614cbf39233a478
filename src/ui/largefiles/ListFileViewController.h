// ListFileViewController: the page that shows what is large in a folder. Three sources: this
// class's scan, ListFileRows.cpp its boxes and what is done with one row, ListFileRemoval.cpp its
// removal. The decisions stand in engine/largefiles/Controller.h.
#pragma once

#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/base/IconRequest.h"
#include "engine/largefiles/Controller.h"
#include "platform/fileTypes.h"
#include "ui/kit/controls/DragView.h"
#include "ui/largefiles/ProgressWindowController.h"
#include "ui/page/FolderEntrance.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"
#include "ui/page/StateTable.h"

namespace orrinvale {

class FileNodeModel;
class LargestFilesDesk;
class ListFileViews;
class TickOutline;

/// What the page asks of the window that it stands in.
class ListFileViewControllerDelagate : public PageDelegate {
public:
    virtual void showDetailPage() {}
    virtual void listFileBackButtonAction() {}
};

/// The delegate of Controller::getController() for as long as it lives. Main thread only.
class ListFileViewController final : public QObject,
                                     public Page,
                                     private DragViewDelegate,
                                     private ControllerDelegate,
                                     private ProgressWindowControllerDelegate {
    Q_OBJECT
public:
    explicit ListFileViewController(PageServices services, QObject* parent = nullptr);
    ~ListFileViewController() override;

    [[nodiscard]] QWidget* aLoadView() const;
    [[nodiscard]] QWidget* listView() const;
    [[nodiscard]] QWidget* view() const override { return aLoadView(); }

    void setMainWindow(QWidget* window) override { m_mainWindow = window; }
    void setDetagate(ListFileViewControllerDelagate* detagate) {
        m_detagate = detagate;
    }  ///< not owned

    /// From the start of a scan until it ends or is stopped. Leaving the page stops a scan, and
    /// does not end this.
    [[nodiscard]] bool isScan() const { return m_state == State::Scanning; }
    /// From the person's yes to the end of the removal.
    [[nodiscard]] bool isRemoving() const override { return m_state == State::Removing; }
    [[nodiscard]] bool isBusy() const override { return isRemoving(); }
    void giveUp() override;
    void chooseFolder() override { selectFileButtonAction(); }

    /// Scans a folder, as if it had been dropped. Does nothing when it is none, or while files are
    /// removed. Where something on the screen is selected the person is asked first.
    void viewDragAction(const std::string& path) override { takeFolder(path); }
    void viewDragActionOfSeveral(const std::string& path) override {
        m_entrance.drop(m_mainWindow, path, true);
    }
    void takeFolder(const std::string& path) override {
        m_entrance.drop(m_mainWindow, path, false);
    }

    /// The next row is one of a file.
    [[nodiscard]] std::string previewBeside(int step) override;

public Q_SLOTS:
    void selectFileButtonAction();
    void stopScanButtonAction();
    void backButtonAction();
    void deleteFiles();
    void setAllSelectOrNoSelect();

private:
    /// In the order of the columns in stateTable().
    enum class State : std::uint8_t {
        Start,
        Scanning,
        Result,
        Removing,  ///< from the person's yes on
    };
    void enter(State state);
    [[nodiscard]] StateTable stateTable() const;
    /// Neither scan nor removal: rows can be ticked and taken away.
    [[nodiscard]] bool isFree() const { return !isScan() && !isRemoving(); }

    // Scan.
    void connectControls();
    void scanFolder(const std::string& path, bool isOneOfSeveral);
    void getRootNodeListWithPath(const std::string& path);
    void showDetailPage();
    void refreshList();
    void showProgress();
    void endScan();
    void watchForEnd();
    void showFitting();
    [[nodiscard]] QString emptyText() const;
    void showQuietLine();
    void showSkipped();

    // Boxes and rows.
    void reloadTreeList() override { m_reloadTimer.start(); }
    void changeSelectAllButtonState(std::int32_t state) override;
    void changeDeleteButtonState();
    void boxClicked(FileNode& node);
    void fileBoxClicked(FileNode& node);
    void selectListed(bool isTicking);
    void connectList(TickOutline& list);
    [[nodiscard]] bool isListShown() const;
    [[nodiscard]] TickOutline& shownOutline() const;
    void showTicked();
    [[nodiscard]] QString tickedText() const;
    [[nodiscard]] std::uint64_t tickedElsewhere(std::uint64_t ticked) const;
    void outlineViewItemDidExpand(const QModelIndex& index);
    void outlineViewItemDidCollapse(const QModelIndex& index);
    void cellClicked(const QModelIndex& index);
    void preview(const QModelIndex& index);
    void showPreview();
    void showRowMenu(const QModelIndex& index, QPoint position);
    void putIntoTrash(FileNode& node);
    void tellWhyNotInTrash(const std::string& path, const std::string& reason);
    void takeOut(FileNode& node);

    // Removal.
    [[nodiscard]] QStringList consequences() const;
    void alertEnded_code(int code);
    void doRemoveAction();
    void changeProgressWithPoint(std::int32_t percent, const std::string& path) override;
    void removalEnded(const LargeFileRemoval& removal) override;
    void showRemoved();
    void stopRemove() override;
    void showFailures();

    const PageServices m_parts;
    std::unique_ptr<ListFileViews> m_views;
    std::unique_ptr<FileNodeModel> m_model;
    std::unique_ptr<LargestFilesDesk> m_files;  // the list beside the tree
    ListFileViewControllerDelagate* m_detagate = nullptr;
    QPointer<QWidget> m_mainWindow;
    FolderEntrance m_entrance;
    const StateTable m_controls;
    State m_state = State::Start;
    QPointer<ProgressWindowController> m_progress;

    std::shared_ptr<FileNodeTree>
        m_rootNodeArr;     // null before the first scan and on the start page
    QTimer m_sortTimer;    // refreshes the list while a scan runs
    QTimer m_reloadTimer;  // answers all requests of one turn of the event loop by one refresh
    QTimer m_endTimer;     // sees that a scan has ended before the next refresh would
    std::int32_t m_selectAllButSt = 0;
    LargeFileRemoval m_removal;  // the last one of this scan
    QTimer m_removalDelay;       // from there to the first entry
};

}  // namespace orrinvale
