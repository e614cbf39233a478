// ListFileViewController: the boxes, opening and closing, and what is done with one row.
#include <QMenu>
#include <QPointer>

#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/largefiles/ListFileViewController.h"
#include "ui/largefiles/ListFileViews.h"
#include "ui/largefiles/NewOutlineView.h"
#include "ui/page/rowMenu.h"
#include "ui/preview/PreviewPane.h"

namespace orrinvale {

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
    const FileNode* const node = m_model->node(index);
    if (node == nullptr) return;
    if (index.column() == FileNodeModel::OpenFinder)
        Controller::getController().openFileWithFileNode(*node);
    if (index.column() == FileNodeModel::Pareview) preview(index);
}

void ListFileViewController::preview(const QModelIndex& index) {
    const FileNode* const node = m_model->node(index);
    if (node != nullptr && !node->isDirectory() && m_detagate != nullptr)
        m_detagate->pereviewFileWithFileNodePath(node->path());
}

// Of the row that the keyboard is at: what is large has no copy to stand beside it.
void ListFileViewController::showPreview() {
    PreviewSubject subject;
    if (const FileNode* const node = m_model->node(m_views->outlineView->currentIndex())) {
        subject.chosen = node->path();
        subject.paths = {subject.chosen};
        subject.total = 1;
    }
    m_views->previewPane->choose(subject);
}

std::string ListFileViewController::previewBeside(int step) {
    QTreeView& outline = *m_views->outlineView;
    QModelIndex row = outline.currentIndex();
    do row = step < 0 ? outline.indexAbove(row) : outline.indexBelow(row);
    while (row.isValid() && m_model->node(row)->isDirectory());
    if (!row.isValid()) return {};
    outline.setCurrentIndex(row);
    return m_model->node(row)->path();
}

void ListFileViewController::showRowMenu(const QModelIndex& index, QPoint position) {
    FileNode* const node = m_model->node(index);
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
    if (father != nullptr && father->state() == FileNode::Mixed) {
        node.setState(FileNode::NotSelected);
        controller.changeFatherNodeSelectState(node, FileNode::NotSelected);
    }
    (father != nullptr ? *father : m_rootNodeArr->root()).removeChild(node);
    controller.changeSelectAllButtonState();
    reloadTreeList();
}

}  // namespace orrinvale
