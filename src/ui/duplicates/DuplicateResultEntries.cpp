// DuplicateResultModel: the rows of what lies in folders that are open. Of each only what was
// listed is kept; a row is made when somebody asks for it.
#include <algorithm>
#include <utility>

#include "platform/paths.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/kit/dialogs/failureWords.h"

namespace orrinvale {

bool DuplicateResultModel::isInFolder(const QModelIndex& index) {
    return index.parent().parent().isValid();
}

OpenedFolders::Folder* DuplicateResultModel::folderBelow(const QModelIndex& parent) const {
    const TreeNode::Pointer* const copy = parent.column() == 0 ? place(parent) : nullptr;
    const auto opened = copy != nullptr ? m_opened.find(copy->get()) : std::nullopt;
    return opened ? m_opened.at(*opened) : nullptr;
}

std::string DuplicateResultModel::pathInFolder(const QModelIndex& index) const {
    const OpenedFolders::Folder* const folder = folderOfEntry(index);
    const auto row = std::size_t(index.row());
    return folder != nullptr && folder->contents && row < folder->contents->entries.size()
               ? folder->contents->entries[row].path
               : std::string();
}

OpenedFolders::Stop DuplicateResultModel::openFolder(const QModelIndex& row) {
    const TreeNode::Pointer leaf = node(row);
    if (!leaf || simpleData(*leaf)->isGroup() || simpleData(*leaf)->wholeFolder() == nullptr ||
        m_opened.find(leaf.get()))
        return nullptr;
    return m_opened.open(leaf, row.parent().row(), row.row()).stop;
}

void DuplicateResultModel::closeFolder(const QModelIndex& row) {
    OpenedFolders::Folder* const folder = folderBelow(row.siblingAtColumn(0));
    if (folder == nullptr) return;
    showRows(*folder, 0);
    m_opened.close(*m_opened.find(folder->leaf.get()));
}

std::string DuplicateResultModel::pathOfOpening(const OpenedFolders::Stop& opening) const {
    const auto place = m_opened.find(opening);
    return place ? simpleData(*m_opened.at(*place)->leaf)->name() : std::string();
}

void DuplicateResultModel::showBeingRead(const OpenedFolders::Stop& opening) {
    const auto place = m_opened.find(opening);
    if (!place || m_opened.at(*place)->contents) return;
    m_opened.at(*place)->notice = tr("Looking at what is in it\u2026");
    showRows(*m_opened.at(*place), 1);
}

void DuplicateResultModel::showContents(const OpenedFolders::Stop& opening,
                                        FolderContents contents) {
    const auto place = m_opened.find(opening);
    if (!place) return;
    OpenedFolders::Folder& folder = *m_opened.at(*place);
    showRows(folder, 0);
    if (!contents.fault.empty())
        folder.notice = tr("What is in it can not be told: %1").arg(inWords(contents.fault));
    else if (contents.entries.empty()) folder.notice = tr("Nothing is in it any more");
    folder.contents = std::move(contents);
    showRows(folder, std::clamp(folder.contents->entries.size(), std::size_t{1},
                                OpenedFolders::rowsAtOnce));
}

std::vector<TreeNode*> DuplicateResultModel::openedGroups() const {
    std::vector<TreeNode*> groups;
    m_opened.visit([&](const OpenedFolders::Folder& folder) {
        if (folder.leaf->nodeParent() != nullptr) groups.push_back(folder.leaf->nodeParent());
    });
    return groups;
}

bool DuplicateResultModel::hasMore(const QModelIndex& parent) const {
    const OpenedFolders::Folder* const folder = parent.isValid() ? folderBelow(parent) : nullptr;
    return folder != nullptr && folder->contents &&
           folder->shown < folder->contents->entries.size();
}

void DuplicateResultModel::showMore(const QModelIndex& parent) {
    if (!hasMore(parent)) return;
    OpenedFolders::Folder& folder = *folderBelow(parent);
    showRows(folder,
             std::min(folder.shown + OpenedFolders::rowsAtOnce, folder.contents->entries.size()));
}

void DuplicateResultModel::showRows(OpenedFolders::Folder& folder, std::size_t count) {
    const QModelIndex parent = indexOf(folder);
    if (count < folder.shown) {
        beginRemoveRows(parent, int(count), int(folder.shown) - 1);
        folder.shown = count;
        endRemoveRows();
    } else if (count > folder.shown) {
        beginInsertRows(parent, int(folder.shown), int(count) - 1);
        folder.shown = count;
        endInsertRows();
    }
}

void DuplicateResultModel::placeOpened(
    const std::vector<std::pair<const TreeNode*, int>>& groupRows) {
    m_opened.visit([&](OpenedFolders::Folder& folder) {
        const TreeNode* const group = folder.leaf->nodeParent();
        const auto found = std::ranges::lower_bound(groupRows, std::pair(group, 0));
        if (group == nullptr || found == groupRows.end() || found->first != group) return;
        folder.group = found->second;
        folder.row = int(group->indexOfChild(folder.leaf.get()).value_or(0));
    });
}

// One row, which is another one with each question.
TreeNode* DuplicateResultModel::entryRow(const QModelIndex& index) const {
    const OpenedFolders::Folder* const folder = folderOfEntry(index);
    if (folder == nullptr) return nullptr;
    if (!m_entry) m_entry = SimpleTreeNode::treeNodeWithData(SimpleNodeData::leafDataWithName({}));
    m_entryFolder = folder;
    SimpleNodeData& data = *simpleData(*m_entry);
    const auto row = std::size_t(index.row());
    if (!folder->contents || row >= folder->contents->entries.size()) {
        data.setName(folder->notice.toStdString());
        data.setIconRep(std::nullopt);
        data.setModificationDate(std::nullopt);
        return m_entry.get();
    }
    const FolderContents::Entry& entry = folder->contents->entries[row];
    data.setName(entry.path);
    data.setFileSize(entry.bytes);
    data.setModificationDate(Date{entry.modified});
    data.setIconRep(
        IconRequest{IconRequest::Path, joinPath(simpleData(*folder->leaf)->name(), entry.path)});
    return m_entry.get();
}

QString DuplicateResultModel::entryTip(const TreeNode& entry) const {
    const SimpleNodeData& folder = *simpleData(*m_entryFolder->leaf);
    const auto& data = simpleData(entry);
    if (!data->iconRep()) return QString::fromStdString(data->name());
    return QString::fromStdString(joinPath(folder.name(), data->name())) + QLatin1Char('\n') +
           descriptionOf(entry);
}

}  // namespace orrinvale
