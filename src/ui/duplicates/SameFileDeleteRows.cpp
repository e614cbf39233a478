// SameFileDeleteViewController: what is done with one row: choosing, opening, showing, sorting, and
// its menu.
#include <QHeaderView>
#include <QMenu>
#include <chrono>

#include "platform/paths.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/duplicates/duplicatePreview.h"
#include "ui/kit/look/picture.h"
#include "ui/page/rowMenu.h"

namespace orrinvale {

void SameFileDeleteViewController::shouldSelectItem(const QModelIndex& index) {
    const QPersistentModelIndex chosen(index);
    finishSorting();  // the row now chosen moves along
    m_openItemPath = pathOf(chosen);
    showPreview(*m_views, *m_model);
}

// A group has a name and no place on the disk: its first copy stands for it.
std::string SameFileDeleteViewController::pathOf(const QModelIndex& index) const {
    if (DuplicateResultModel::isInFolder(index)) {
        const std::string folder = pathOf(index.parent()), below = m_model->pathInFolder(index);
        return below.empty() ? folder : joinPath(folder, below);
    }
    const TreeNode::Pointer node = m_model->node(index);
    if (!node) return {};
    if (!simpleData(*node)->isGroup()) return simpleData(*node)->name();
    return node->numberOfChildren() != 0 ? simpleData(*node->childAtIndex(0))->name()
                                         : std::string();
}

std::string SameFileDeleteViewController::previewBeside(int step) {
    if (!bSearchFinished()) return {};
    QTreeView& outline = *m_views->outline;
    QModelIndex row = outline.currentIndex();
    const std::string shown = pathOf(row);
    do row = step < 0 ? outline.indexAbove(row) : outline.indexBelow(row);
    while (row.isValid() && pathOf(row) == shown);  // an open group and its first copy
    if (!row.isValid()) return {};
    outline.setCurrentIndex(row);
    return m_openItemPath;
}

void SameFileDeleteViewController::openFinderBtnClicked() {
    if (!bSearchFinished() || m_openItemPath.empty() || m_delegate == nullptr) return;
    m_delegate->pereviewFileWithFileNodePath(m_openItemPath);
}

void SameFileDeleteViewController::RevealInFinderBtnClicked() {
    if (!bSearchFinished() || m_openItemPath.empty() || !m_parts.reveal) return;
    m_parts.reveal(m_openItemPath);
}

void SameFileDeleteViewController::didClickTableColumn(int column) {
    m_sortDescending = column == m_lastColumn && !m_sortDescending;
    m_lastColumn = column;
    sortTree(column);
}

void SameFileDeleteViewController::sortTree(int column) {
    const std::optional<int> key = m_model->sortKey(column);
    auto& sorting = m_sortings.at(static_cast<std::size_t>(m_remberWitchSelect));
    sorting.reset();
    if (key) sorting = {column, m_sortDescending ? Qt::DescendingOrder : Qt::AscendingOrder};
    showSortIndicator();
    if (!key || m_treeData == nullptr) return;
    finishSorting();  // equal keys keep the order of the sort before
    QModelIndex current = m_views->outline->currentIndex();
    while (current.parent().isValid()) current = current.parent();
    const TreeNode::Pointer chosen = m_model->node(current);
    m_model->reorder([&] {
        m_leafSort.begin(*m_treeData, static_cast<SortKey>(*key), m_sortDescending);
        // The view remembers the chosen row by its place, and folders that are open; nothing of
        // other groups.
        if (chosen) m_leafSort.sortNow(*chosen);
        for (TreeNode* const group : m_model->openedGroups()) m_leafSort.sortNow(*group);
        // A small result is sorted when the click is over.
        constexpr std::size_t atOnce = 4096;
        if (m_treeData->numberOfChildren() <= atOnce) m_leafSort.finish();
    });
    if (m_leafSort.isPending()) m_sortTimer.start();
}

// Each kind has an order of its own, and a list that nobody has sorted shows none.
void SameFileDeleteViewController::showSortIndicator() {
    const auto& sorting = m_sortings.at(static_cast<std::size_t>(m_remberWitchSelect));
    QHeaderView& header = *m_views->outline->header();
    header.setSortIndicatorShown(sorting.has_value());
    if (sorting) header.setSortIndicator(sorting->column, sorting->order);
}

void SameFileDeleteViewController::sortFurther() {
    constexpr std::chrono::milliseconds slice{10};
    if (m_leafSort.step(std::chrono::steady_clock::now() + slice)) m_sortTimer.stop();
    m_views->outline->viewport()->update();
}

// Before anything that depends on which copy stands where, and on what is ticked.
void SameFileDeleteViewController::finishSorting() {
    finishTicks();
    m_sortTimer.stop();
    if (m_leafSort.isPending()) m_model->reorder([this] { m_leafSort.finish(); });
}

QIcon SameFileDeleteViewController::iconOf(const TreeNode& node) const {
    if (simpleData(node)->wholeFolder() != nullptr) return picture(QStringLiteral("folder"));
    const auto& request = simpleData(node)->iconRep();
    return request && m_parts.icons ? m_parts.icons(*request) : QIcon();
}

// The view remembers by its place what is open.
void SameFileDeleteViewController::openFolder(const QModelIndex& index) {
    const QPersistentModelIndex opened(index);
    if (!index.parent().isValid()) return;  // a group
    finishSorting();
    m_opening->open(opened);
}

// Rows must not come into order while others leave.
void SameFileDeleteViewController::closeFolder(const QModelIndex& index) {
    const QPersistentModelIndex closed(index);
    finishSorting();
    m_opening->close(closed);
}

// The current row, over which its menu stood.
void SameFileDeleteViewController::toggleFolder(std::uint64_t resultNumber) {
    if (!bSearchFinished() || resultNumber != m_resultNumber) return;
    ResultOutline& outline = *m_views->outline;
    const QModelIndex row = outline.currentIndex().siblingAtColumn(0);
    outline.setExpanded(row, !outline.isExpanded(row));
}

void SameFileDeleteViewController::showRowMenu(const QModelIndex& index, QPoint position) {
    const bool isInFolder = DuplicateResultModel::isInFolder(index);
    const TreeNode::Pointer node = m_model->node(isInFolder ? index.parent() : index);
    if (!node || !bSearchFinished()) return;
    QMenu* const menu = makeRowMenu(m_views->detailView, *this,
                                    {.preview = [this] { openFinderBtnClicked(); },
                                     .reveal = [this] { RevealInFinderBtnClicked(); },
                                     .path = [path = pathOf(index)] { return path; }});
    if (isInFolder) {
        menu->popup(position);
        return;
    }
    if (simpleData(*node)->isLeaf() && simpleData(*node)->wholeFolder() != nullptr)
        menu->addAction(m_views->outline->isExpanded(index.siblingAtColumn(0))
                            ? tr("Hide What Is in It")
                            : tr("Show What Is in It"),
                        this, [this, number = m_resultNumber] { toggleFolder(number); });
    if (simpleData(*node)->isLeaf() && holdOf(*simpleData(*node)) != FolderHold::Goes)
        menu->addAction(
            tr("Tick All but This One"), this, [this, leaf = node, number = m_resultNumber] {
                if (!bSearchFinished() || number != m_resultNumber || leaf->nodeParent() == nullptr)
                    return;
                finishTicks();
                m_selection.tickAllBut(*leaf);
                showTicks();
            });
    addFolderActions(*menu, folderOfRow(index));
    menu->popup(position);
}

}  // namespace orrinvale
