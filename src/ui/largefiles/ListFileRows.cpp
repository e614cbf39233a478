// ListFileViewController: the boxes, opening and closing, and what is done with one row.
#include <QItemSelectionModel>
#include <QMenu>
#include <QPointer>

#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/largefiles/LargestFilesDesk.h"
#include "ui/largefiles/ListFileViewController.h"
#include "ui/largefiles/ListFileViews.h"
#include "ui/largefiles/NewOutlineView.h"
#include "ui/page/rowMenu.h"
#include "ui/preview/PreviewPane.h"

namespace orrinvale {
namespace {

// Of a row of the tree or of the list; null for an index of no row.
FileNode* shownNode(const QModelIndex& index) {
    const auto* const model = dynamic_cast<const LevelModel<FileNode>*>(index.model());
    return model != nullptr ? model->node(index) : nullptr;
}

// No folder above speaks for it.
bool standsByItself(const FileNode& node) {
    for (const FileNode* folder = node.father(); folder != nullptr; folder = folder->father())
        if (folder->state() != FileNode::Mixed) return false;
    return true;
}

}  // namespace

// The list of files: its rows are treated as those of the tree.
void ListFileViewController::connectList(TickOutline& list) {
    using Self = ListFileViewController;
    connect(&list, &QAbstractItemView::clicked, this, &Self::cellClicked);
    connect(&list, &TickOutline::menuWanted, this, &Self::showRowMenu);
    connect(&list, &TickOutline::previewWanted, this,
            [this, &list] { preview(list.currentIndex()); });
    connect(m_views->viewSwitch, &SegmentedControl::chosen, this, [this, &list] {
        // The keyboard goes along from list to list, and stays where it steers the switch.
        const bool isInList = m_views->outlineView->hasFocus() || list.hasFocus();
        m_files->setShown(isListShown());
        showFitting();
        showTicked();
        if (isInList) shownOutline().setFocus();
        showPreview();
    });
    connect(list.selectionModel(), &QItemSelectionModel::currentChanged, this, &Self::showPreview);
    connect(m_files.get(), &LargestFilesDesk::boxClicked, this,
            [this](FileNode* node) { fileBoxClicked(*node); });
    connect(m_files.get(), &LargestFilesDesk::headerClicked, this, &Self::selectListed);
    connect(m_files.get(), &LargestFilesDesk::changed, this, &Self::showTicked);
    connect(m_files.get(), &LargestFilesDesk::changed, this, &Self::showPreview);
}

void ListFileViewController::setAllSelectOrNoSelect() {
    // The click has changed the box already, and the scan does not let it.
    if (!isFree()) {
        changeSelectAllButtonState(m_selectAllButSt);
        return;
    }
    Controller::getController().selectAllFileNode(m_selectAllButSt == 1 ? FileNode::NotSelected
                                                                        : FileNode::Selected);
    changeSelectAllButtonState(m_selectAllButSt);
}

void ListFileViewController::changeSelectAllButtonState(std::int32_t state) {
    m_selectAllButSt = state;
    m_views->selectAllButton->setState(state == 0   ? TickState::Nothing
                                       : state == 1 ? TickState::All
                                                    : TickState::Some);
    changeDeleteButtonState();
}

void ListFileViewController::changeDeleteButtonState() {
    m_views->deleteButton->setEnabled(m_selectAllButSt != 0 && !isRemoving());
}

void ListFileViewController::boxClicked(FileNode& node) {
    if (!isFree()) return;
    const auto state =
        node.state() == FileNode::Selected ? FileNode::NotSelected : FileNode::Selected;
    node.setState(state);
    Controller& controller = Controller::getController();
    if (node.isExpand()) controller.changeSelectWithNode(node, state);
    controller.changeFatherNodeSelectState(node, state);
}

void ListFileViewController::fileBoxClicked(FileNode& node) {
    if (!isFree()) return;
    const auto state =
        standingState(node) == FileNode::Selected ? FileNode::NotSelected : FileNode::Selected;
    Controller::getController().changeSelectOfFile(node, state);
}

void ListFileViewController::selectListed(bool isTicking) {
    if (isFree() && m_files->list() != nullptr)
        Controller::getController().changeSelectOfFiles(
            *m_files->list(), isTicking ? FileNode::Selected : FileNode::NotSelected);
    else reloadTreeList();
}

void ListFileViewController::outlineViewItemDidExpand(const QModelIndex& index) {
    m_views->outlineView->clearRowNum();
    FileNode* const node = m_model->node(index);
    if (node == nullptr) return;
    node->setIsExpand(true);
    // The ticks reach what has just come into view.
    if (node->state() != FileNode::Mixed)
        Controller::getController().changeSelectWithNode(*node, node->state());
    // What was read of it when it was open before may be long out of date.
    reloadTreeList();
}

void ListFileViewController::outlineViewItemDidCollapse(const QModelIndex& index) {
    m_views->outlineView->clearRowNum();
    if (FileNode* const node = m_model->node(index)) node->setIsExpand(false);
}

void ListFileViewController::cellClicked(const QModelIndex& index) {
    const FileNode* const node = shownNode(index);
    if (node == nullptr) return;
    const bool isOfTree = index.model() == m_model.get();
    if (index.column() ==
        (isOfTree ? int(FileNodeModel::OpenFinder) : int(LargestFilesModel::OpenFinder)))
        Controller::getController().openFileWithFileNode(*node);
    if (index.column() ==
        (isOfTree ? int(FileNodeModel::Pareview) : int(LargestFilesModel::Pareview)))
        preview(index);
}

void ListFileViewController::preview(const QModelIndex& index) {
    const FileNode* const node = shownNode(index);
    if (node != nullptr && !node->isDirectory() && m_detagate != nullptr)
        m_detagate->pereviewFileWithFileNodePath(node->path());
}

// Of the row that the keyboard is at: what is large has no copy to stand beside it.
void ListFileViewController::showPreview() {
    PreviewSubject subject;
    if (const FileNode* const node = shownNode(shownOutline().currentIndex())) {
        subject.chosen = node->path();
        subject.paths = {subject.chosen};
        subject.total = 1;
    }
    m_views->previewPane->choose(subject);
}

std::string ListFileViewController::previewBeside(int step) {
    TickOutline& outline = shownOutline();
    QModelIndex row = outline.currentIndex();
    do row = step < 0 ? outline.indexAbove(row) : outline.indexBelow(row);
    while (row.isValid() && shownNode(row)->isDirectory());
    if (!row.isValid()) return {};
    outline.setCurrentIndex(row);
    return shownNode(row)->path();
}

void ListFileViewController::showRowMenu(const QModelIndex& index, QPoint position) {
    FileNode* const node = shownNode(index);
    if (node == nullptr) return;
    // The tree lives as long as the menu, so that its node does; another scan may have begun
    // meanwhile.
    const auto tree = m_rootNodeArr;
    RowActions actions{
        .preview = {},
        .reveal = [tree, node] { Controller::getController().openFileWithFileNode(*node); },
        .path = [tree, node] { return node->path(); }};
    if (!node->isDirectory())
        actions.preview = [this, place = QPersistentModelIndex(index)] { preview(place); };
    QMenu* const menu = makeRowMenu(m_views->listView, *this, actions);
    menu->addAction(tr("Move to Trash"), this,
                    [this, tree, node] {
                        if (tree == m_rootNodeArr) putIntoTrash(*node);
                    })
        ->setEnabled(isFree() && !node->isSystemFile());
    menu->popup(position);
}

void ListFileViewController::putIntoTrash(FileNode& node) {
    if (!isFree()) return;
    const std::string path = node.path();
    Controller::getController().moveFileToTrash(
        path, node.identity(),
        [page = QPointer(this), tree = m_rootNodeArr, &node, path](const std::string& reason) {
            if (page == nullptr) return;
            if (!reason.empty()) page->tellWhyNotInTrash(path, reason);
            else if (tree == page->m_rootNodeArr) page->takeOut(node);
        });
}

void ListFileViewController::tellWhyNotInTrash(const std::string& path, const std::string& reason) {
    Alert alert;
    alert.title = tr("This could not be moved to the trash.");
    alert.text = QStringLiteral("%1\n%2").arg(QString::fromStdString(path), inWords(reason));
    alert.severity = Alert::Severity::Warning;
    m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
}

// The boxes above tell of what is left.
void ListFileViewController::takeOut(FileNode& node) {
    Controller& controller = Controller::getController();
    FileNode* const father = node.father();
    if (father != nullptr && standsByItself(node)) {
        node.setState(FileNode::NotSelected);
        controller.changeFatherNodeSelectState(node, FileNode::NotSelected);
    }
    (father != nullptr ? *father : m_rootNodeArr->root()).removeChild(node);
    controller.changeSelectAllButtonState();
    reloadTreeList();
}

}  // namespace orrinvale
