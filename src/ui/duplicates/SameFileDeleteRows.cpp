// SameFileDeleteViewController: what is done with one row: choosing, opening, showing, sorting, and its menu.
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>

#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"

namespace orrinvale {

void SameFileDeleteViewController::shouldSelectItem(const QModelIndex& index) {
    const TreeNode::Pointer node = m_model->node(index);
    m_openItemPath = node ? simpleData(*node)->name() : std::string();
}

void SameFileDeleteViewController::openFinderBtnClicked() {
    if (!m_bSearchFinished || m_openItemPath.empty() || m_delegate == nullptr) return;
    m_delegate->pereviewFileWithFileNodePath(m_openItemPath);
}

void SameFileDeleteViewController::RevealInFinderBtnClicked() {
    if (!m_bSearchFinished || m_openItemPath.empty() || !m_parts.reveal) return;
    m_parts.reveal(m_openItemPath);
}

void SameFileDeleteViewController::didClickTableColumn(int column) {
    m_sortDescending = column == m_lastColumn && !m_sortDescending;
    m_lastColumn = column;
    sortTree(column);
}

void SameFileDeleteViewController::sortTree(int column) {
    using Model = DuplicateResultModel;
    const bool isSortable = column == Model::NameColumn || column == Model::FileSize || column == Model::ModifyDate;
    QHeaderView& header = *m_views->outline->header();
    header.setSortIndicatorShown(isSortable);
    if (!isSortable || m_treeData == nullptr) return;
    header.setSortIndicator(column, m_sortDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    m_model->reorder([&] {
        TreeNode& tree = *m_treeData;
        if (column == Model::NameColumn)
            m_sortDescending ? tree.decendingSortName() : tree.acendingSortName();
        else if (column == Model::FileSize)
            m_sortDescending ? tree.decendingSortSize() : tree.acendingSortSize();
        else
            m_sortDescending ? tree.decendingSortDate() : tree.acendingSortDate();
    });
}

QIcon SameFileDeleteViewController::iconOf(const TreeNode& node) const {
    const auto& request = simpleData(node)->iconRep();
    return request && m_parts.icons ? m_parts.icons(*request) : QIcon();
}

void SameFileDeleteViewController::showRowMenu(const QModelIndex& index, QPoint position) {
    const TreeNode::Pointer node = m_model->node(index);
    if (!node || !simpleData(*node)->isLeaf() || !m_bSearchFinished) return;
    const std::string path = simpleData(*node)->name();
    auto* const menu = new QMenu(m_views->detailView);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Preview"), this, [this] { openFinderBtnClicked(); });
    menu->addAction(tr("Show in Folder"), this, [this] { RevealInFinderBtnClicked(); });
    menu->addAction(tr("Copy Path"), this, [path] { QGuiApplication::clipboard()->setText(QString::fromStdString(path)); });
    menu->addSeparator();
    menu->addAction(tr("Tick All but This One"), this, [this, leaf = node, number = m_resultNumber] {
        if (!m_bSearchFinished || number != m_resultNumber || leaf->nodeParent() == nullptr) return;
        m_selection.tickAllBut(*leaf);
        setRemoveButtonState();
        changeAllSelectCheckBoxState();
        m_model->refresh();
    });
    menu->popup(position);
}

}  // namespace orrinvale
