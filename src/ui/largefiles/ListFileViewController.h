// ListFileViewController: the page that shows what is large in a folder. Three sources: this
// class's scan, ListFileRows.cpp its boxes and what is done with one row, ListFileRemoval.cpp its
// removal. The decisions stand in engine/largefiles/Controller.h.
#pragma once

#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/base/IconRequest.h"
#include "engine/largefiles/Controller.h"
#include "platform/files.h"
#include "ui/kit/controls/DragView.h"
#include "ui/largefiles/ProgressWindowController.h"

namespace orrinvale {

class Dialogs;
class FileNodeModel;
class ListFileViews;

/// What the page asks of the window that it stands in.
class ListFileViewControllerDelagate {
public:
    virtual ~ListFileViewControllerDelagate() = default;
    virtual void showDetailPage() {}
    virtual void listFileBackButtonAction() {}
    /// Exact bytes.
    virtual void pereviewFileWithFileNodePath(const std::string& path) { static_cast<void>(path); }

protected:
    ListFileViewControllerDelagate() = default;
    ListFileViewControllerDelagate(const ListFileViewControllerDelagate&) = default;
    ListFileViewControllerDelagate& operator=(const ListFileViewControllerDelagate&) = default;
};

/// What the page works with. Nothing of it is owned; all of it outlives the page.
struct ListFileParts {
    const FileSystem* files = nullptr;
    Dialogs* dialogs = nullptr;
    std::function<QIcon(const IconRequest&)> icons;
};

/// The delegate of Controller::getController() for as long as it lives. Main thread only.
class ListFileViewController final : public QObject,
                                     private DragViewDelegate,
                                     private ControllerDelegate,
                                     private ProgressWindowControllerDelegate {
    Q_OBJECT
public:
    explicit ListFileViewController(ListFileParts parts, QObject* parent = nullptr);
    ~ListFileViewController() override;

    [[nodiscard]] QWidget* aLoadView() const;
    [[nodiscard]] QWidget* listView() const;

    void setMainWindow(QWidget* window) { m_mainWindow = window; }
    void setDetagate(ListFileViewControllerDelagate* detagate) {
        m_detagate = detagate;
    }  ///< not owned

    /// From the start of a scan until it ends or is stopped. Leaving the page stops a scan, and
    /// does not end this.
    [[nodiscard]] bool isScan() const { return m_isScan; }
    /// From the person's yes to the end of the removal.
    [[nodiscard]] bool isRemoving() const { return m_isRemoving; }
    /// The removal ends before its next entry, and does not begin where it has not begun.
    void giveUpRemoval();

    /// Scans a folder, as if it had been dropped. Does nothing when it is none, or while files are
    /// removed. Where something on the screen is selected the person is asked first.
    void viewDragAction(const std::string& path) override { folderDropped(path, false); }
    void viewDragActionOfSeveral(const std::string& path) override { folderDropped(path, true); }

    /// Goes on to the next row of a file, or with -1 to the one before, and gives its path; empty
    /// where there is none.
    [[nodiscard]] std::string previewBeside(int step);

public Q_SLOTS:
    void selectFileButtonAction();
    void stopScanButtonAction();
    void backButtonAction();
    void deleteFiles();
    void setAllSelectOrNoSelect();

private:
    // Scan.
    void connectControls();
    void folderDropped(const std::string& path, bool isOneOfSeveral);
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
    void outlineViewItemDidExpand(const QModelIndex& index);
    void outlineViewItemDidCollapse(const QModelIndex& index);
    void cellClicked(const QModelIndex& index);
    void preview(const QModelIndex& index);
    void showRowMenu(const QModelIndex& index, QPoint position);
    void putIntoTrash(FileNode& node);
    void tellWhyNotInTrash(const std::string& path, const std::string& reason);
    void takeOut(FileNode& node);

    // Removal.
    void alertEnded_code(int code);
    void doRemoveAction();
    void changeProgressWithPoint(std::int32_t percent, const std::string& path) override;
    void removalEnded(const LargeFileRemoval& removal) override;
    void showRemoved();
    void stopRemove() override;
    void showFailures();

    ListFileParts m_parts;
    std::unique_ptr<ListFileViews> m_views;
    std::unique_ptr<FileNodeModel> m_model;
    ListFileViewControllerDelagate* m_detagate = nullptr;
    QPointer<QWidget> m_mainWindow;
    QPointer<ProgressWindowController> m_progress;

    std::shared_ptr<FileNodeTree>
        m_rootNodeArr;     // null before the first scan and on the start page
    QTimer m_sortTimer;    // refreshes the list while a scan runs
    QTimer m_reloadTimer;  // answers all requests of one turn of the event loop by one refresh
    QTimer m_endTimer;     // sees that a scan has ended before the next refresh would
    std::int32_t m_selectAllButSt = 0;
    LargeFileRemoval m_removal;  // the last one of this scan
    bool m_isScan = false;
    bool m_isRemoving = false;  // from the person's yes on
    QTimer m_removalDelay;      // from there to the first entry
};

}  // namespace orrinvale
