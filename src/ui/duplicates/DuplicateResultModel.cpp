// groupId() and copyId() say what an index holds.
#include "ui/duplicates/DuplicateResultModel.h"

#include <fmt/format.h>

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/lists/columnWidths.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int countColumnWidth = 64;
constexpr int sizeColumnWidth = 86;

// Qt keeps what is open in tables by index, and asks them once for each row that it lays out. It
// files an index under 16 times its row plus its column plus its identifier. With these identifiers
// a group comes under twice its row and a copy under an odd number, so that the groups, all of
// which may be open, share no place and a copy is known to be absent at the first look.
constexpr quintptr groupMark = quintptr{1} << (std::numeric_limits<quintptr>::digits - 1);

quintptr groupId(int row) { return (quintptr(0) - quintptr(14) * quintptr(row)) | groupMark; }
quintptr copyId(int groupRow) { return 2 * quintptr(groupRow) + 1; }

// What is in a folder has a mark of its own, and an odd number too.
constexpr quintptr entryMark = groupMark >> 1U;
quintptr entryId(std::size_t place) { return (2 * quintptr(place) + 1) | entryMark; }

bool isTopLevel(const QModelIndex& index) { return (index.internalId() & groupMark) != 0; }
bool isEntry(const QModelIndex& index) {
    return !isTopLevel(index) && (index.internalId() & entryMark) != 0;
}
std::size_t placeOf(const QModelIndex& entry) {
    return std::size_t((entry.internalId() & ~entryMark) / 2);
}
int groupRowOf(const QModelIndex& copy) { return static_cast<int>(copy.internalId() / 2); }

QString shortDate(const std::optional<Date>& date) {
    if (!date) return {};
    constexpr std::int64_t perMillisecond = 1'000'000;
    const QDateTime moment = QDateTime::fromMSecsSinceEpoch(date->nanoseconds / perMillisecond);
    return QLocale().toString(moment, QLocale::ShortFormat);
}

// What sets the file of a row apart from others, a sentence each.
QStringList specialsOf(const SimpleNodeData& data) {
    QStringList specials;
    if (data.isProtected())
        specials.push_back(data.isLeaf()
                               ? DuplicateResultModel::tr("In a protected folder: it stays")
                               : DuplicateResultModel::tr("All copies are protected and stay"));
    if (data.isLink())
        specials.push_back(data.linkTarget().empty()
                               ? DuplicateResultModel::tr("Reached through a link")
                               : DuplicateResultModel::tr("Reached through a link; it lies at %1")
                                     .arg(QString::fromStdString(data.linkTarget())));
    if (const FolderFacts* const folder = data.wholeFolder())
        specials.push_back(
            folder->files == 1
                ? DuplicateResultModel::tr("A folder with 1 file, which goes or stays as a whole")
                : DuplicateResultModel::tr(
                      "A folder with %Ln files, which goes or stays as a whole", nullptr,
                      static_cast<int>(folder->files)));
    if (const SimpleNodeData* const folder = goingFolderOf(data))
        specials.push_back(DuplicateResultModel::tr("Goes with the folder %1")
                               .arg(QString::fromStdString(folder->name())));
    if (data.hardLinks() > 1)
        specials.push_back(DuplicateResultModel::tr(
            "One file with %Ln names; its space is free when all of them are gone", nullptr,
            static_cast<int>(data.hardLinks())));
    return specials;
}

// The folder itself, or one that it lies in.
const SimpleNodeData* goesAsFolder(const SimpleNodeData& folder) {
    return folder.selectNum() == 1 ? &folder : goingFolderOf(folder);
}

// Of what lies in it.
QString wordsOfEntry(const SimpleNodeData& folder) {
    const SimpleNodeData* const going = goesAsFolder(folder);
    return (going != nullptr ? DuplicateResultModel::tr("Goes with the folder %1")
                             : DuplicateResultModel::tr("Goes or stays with the folder %1"))
        .arg(QString::fromStdString((going != nullptr ? *going : folder).name()));
}

// The count of a group without some of its copies ticked is known by heart; drawing it puts it
// right.
QString countText(const TreeNode& node) {
    SimpleNodeData& data = *simpleData(node);
    if (!data.isGroup()) return {};
    if (data.selectNum() != 2)
        data.setShowSelectNumStr(fmt::format(
            "{}/{}", data.selectNum() == 1 ? node.numberOfChildren() : 0, node.numberOfChildren()));
    return QString::fromStdString(data.showSelectNumStr());
}

QString nameOf(const TreeNode& node) {
    const SimpleNodeData& data = *simpleData(node);
    QString name = QString::fromStdString(data.name());
    const FolderFacts* const folders = data.isGroup() ? data.wholeFolder() : nullptr;
    if (folders == nullptr) return name;
    return folders->files == 1 ? DuplicateResultModel::tr("%1, 1 file each").arg(name)
                               : DuplicateResultModel::tr("%1, %Ln files each", nullptr,
                                                          static_cast<int>(folders->files))
                                     .arg(name);
}

QIcon iconOf(const TreeNode& node, const DuplicateResultModel::IconSource& icons) {
    if (simpleData(node)->wholeFolder() != nullptr) return picture(QStringLiteral("folder"));
    const auto& request = simpleData(node)->iconRep();
    return request && icons ? icons(*request) : QIcon();
}

std::vector<TickColumn<TreeNode>> columns(DuplicateResultModel::IconSource icons) {
    return {
        {.name = DuplicateResultModel::tr("Ticked"),
         .look = CellLook::Box,
         .width = boxColumnWidth},
        {.title = DuplicateResultModel::tr("Name"),
         .look = CellLook::PathName,
         .sortKey = int(SortKey::Name),
         .text = nameOf,
         .icon = [icons = std::move(icons)](const TreeNode& node) { return iconOf(node, icons); }},
        {.title = DuplicateResultModel::tr("Selected"),
         .width = countColumnWidth,
         .text = countText},
        {.title = DuplicateResultModel::tr("Size"),
         .look = CellLook::Figure,
         .width = sizeColumnWidth,
         .sortKey = int(SortKey::Size),
         .text =
             [](const TreeNode& node) {
                 return shownSize(UtilityFunction::convertVolSpace(simpleData(node)->fileSize()));
             }},
        {.title = DuplicateResultModel::tr("Modified"),
         .width = dateColumnWidth(),
         .sortKey = int(SortKey::Date),
         .text =
             [](const TreeNode& node) { return shortDate(simpleData(node)->ModificationDate()); }},
    };
}

}  // namespace

DuplicateResultModel::DuplicateResultModel(IconSource icons, BoxClicked boxClicked, QObject* parent)
    : TickModelOf(columns(std::move(icons)), parent), m_boxClicked(std::move(boxClicked)) {}

void DuplicateResultModel::setTree(TreeNode* tree) {
    beginResetModel();
    m_sharedFolders.clear();
    m_opened.clear();
    m_tree = tree;
    endResetModel();
}

void DuplicateResultModel::reorder(const std::function<void()>& change) {
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    std::vector<std::pair<const TreeNode*, const TreeNode*>>
        nodes;  // the group, and the copy or null
    nodes.reserve(static_cast<std::size_t>(before.size()));
    for (const QModelIndex& index : before) {
        if (isEntry(index)) {  // whose place moves along
            nodes.emplace_back(nullptr, nullptr);
            continue;
        }
        const int groupRow = isTopLevel(index) ? index.row() : groupRowOf(index);
        nodes.emplace_back(m_tree->childAtIndex(std::size_t(groupRow)).get(),
                           isTopLevel(index) ? nullptr : node(index).get());
    }
    change();

    // Sorted by address: cheaper to make than a table that asks for memory at each group.
    std::vector<std::pair<const TreeNode*, int>> groupRows;
    const bool isAnyToFind = !before.empty() || !m_opened.empty();
    if (isAnyToFind) groupRows.reserve(m_tree->numberOfChildren());
    for (int row = 0; row < rowCount() && isAnyToFind; ++row)
        groupRows.emplace_back(m_tree->childAtIndex(std::size_t(row)).get(), row);
    std::sort(groupRows.begin(), groupRows.end());
    placeOpened(groupRows);
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        const auto [group, copy] = nodes[static_cast<std::size_t>(i)];
        if (group == nullptr) {
            after.push_back(before[i]);
            continue;
        }
        const int column = before[i].column();
        const int groupRow =
            std::lower_bound(groupRows.begin(), groupRows.end(), std::pair(group, 0))->second;
        if (copy == nullptr) {
            after.push_back(createIndex(groupRow, column, groupId(groupRow)));
            continue;
        }
        const auto row = group->indexOfChild(copy).value_or(0);
        after.push_back(createIndex(static_cast<int>(row), column, copyId(groupRow)));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
}

const TreeNode::Pointer* DuplicateResultModel::place(const QModelIndex& index) const {
    if (!index.isValid() || m_tree == nullptr || isEntry(index)) return nullptr;
    const auto row = static_cast<std::size_t>(index.row());
    const auto groupRow = isTopLevel(index) ? row : static_cast<std::size_t>(groupRowOf(index));
    if (groupRow >= m_tree->numberOfChildren()) return nullptr;
    const TreeNode::Pointer& group = m_tree->childAtIndex(groupRow);
    if (isTopLevel(index)) return &group;
    return row < group->numberOfChildren() ? &group->childAtIndex(row) : nullptr;
}

TreeNode::Pointer DuplicateResultModel::node(const QModelIndex& index) const {
    const TreeNode::Pointer* const found = place(index);
    return found != nullptr ? *found : nullptr;
}

TreeNode* DuplicateResultModel::rowAt(const QModelIndex& index) const {
    if (index.isValid() && isEntry(index)) return entryRow(index);
    const TreeNode::Pointer* const found = place(index);
    return found != nullptr && simpleData(**found) != nullptr ? found->get() : nullptr;
}

QModelIndex DuplicateResultModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column < 0 || column >= ColumnCount || row >= rowCount(parent)) return {};
    if (!parent.isValid()) return createIndex(row, column, groupId(row));
    if (isTopLevel(parent)) return createIndex(row, column, copyId(parent.row()));
    const auto place = m_opened.find(node(parent).get());
    return place ? createIndex(row, column, entryId(*place)) : QModelIndex();
}

QModelIndex DuplicateResultModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || isTopLevel(child)) return {};
    if (isEntry(child)) {
        const OpenedFolders::Folder* const folder = folderOfEntry(child);
        return folder != nullptr ? indexOf(*folder) : QModelIndex();
    }
    return createIndex(groupRowOf(child), 0, groupId(groupRowOf(child)));
}

int DuplicateResultModel::rowCount(const QModelIndex& parent) const {
    if (m_tree == nullptr) return 0;
    if (!parent.isValid()) return static_cast<int>(m_tree->numberOfChildren());
    if (!isTopLevel(parent)) {
        const OpenedFolders::Folder* const folder = folderBelow(parent);
        return folder != nullptr ? static_cast<int>(folder->shown) : 0;
    }
    if (parent.column() != 0) return 0;
    const auto row = static_cast<std::size_t>(parent.row());
    return row < m_tree->numberOfChildren()
               ? static_cast<int>(m_tree->childAtIndex(row)->numberOfChildren())
               : 0;
}

Qt::ItemFlags DuplicateResultModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (isEntry(index)) return flags | Qt::ItemNeverHasChildren;
    const TreeNode* const row = rowAt(index);
    const bool isFolder = row != nullptr && simpleData(*row)->wholeFolder() != nullptr;
    if (!isTopLevel(index) && !isFolder) flags |= Qt::ItemNeverHasChildren;
    const bool mayTick = row != nullptr && stateOf(*row).has_value();
    if (index.column() == Checkbox && mayTick) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

std::optional<TickState> DuplicateResultModel::stateOf(const TreeNode& node) const {
    if (&node == m_entry.get()) return std::nullopt;  // a folder goes as one
    if (simpleData(node)->isProtected() || goingFolderOf(*simpleData(node)) != nullptr)
        return std::nullopt;
    return tickState(QVariant(simpleData(node)->selectNum()));
}

QString DuplicateResultModel::toolTipOf(const TreeNode& node) const {
    if (&node == m_entry.get()) return entryTip(node);
    return (QStringList(nameOf(node)) + specialsOf(*simpleData(node))).join(QLatin1Char('\n'));
}

QString DuplicateResultModel::descriptionOf(const TreeNode& node) const {
    if (&node == m_entry.get()) return wordsOfEntry(*simpleData(*m_entryFolder->leaf));
    return specialsOf(*simpleData(node)).join(QLatin1Char('\n'));
}

QStringList DuplicateResultModel::signsOf(const TreeNode& node) const {
    QStringList signs;
    if (simpleData(node)->isProtected() && simpleData(node)->isLeaf())
        signs.push_back(QStringLiteral("sign_protected"));
    if (simpleData(node)->isLink()) signs.push_back(QStringLiteral("sign_link"));
    if (simpleData(node)->hardLinks() > 1) signs.push_back(QStringLiteral("sign_hard_link"));
    return signs;
}

bool DuplicateResultModel::isStrong(const TreeNode& node) const {
    return simpleData(node)->isGroup();
}

bool DuplicateResultModel::isGrey(const TreeNode& node) const {
    if (&node == m_entry.get())
        return !simpleData(node)->iconRep() ||  // words alone
               goesAsFolder(*simpleData(*m_entryFolder->leaf)) != nullptr;
    return goingFolderOf(*simpleData(node)) != nullptr;
}

bool DuplicateResultModel::clickBox(const QModelIndex& index) {
    const TreeNode::Pointer clicked = node(index);
    if (!clicked || !m_boxClicked) return false;
    m_boxClicked(clicked, index);
    return true;
}

OpenedFolders::Folder* DuplicateResultModel::folderOfEntry(const QModelIndex& entry) const {
    return entry.isValid() && isEntry(entry) ? m_opened.at(placeOf(entry)) : nullptr;
}

QModelIndex DuplicateResultModel::indexOf(const OpenedFolders::Folder& folder) const {
    return createIndex(folder.row, 0, copyId(folder.group));
}

// A folder is one whether it is open or not, and whether it was listed yet.
bool DuplicateResultModel::hasChildren(const QModelIndex& parent) const {
    if (!parent.isValid() || isTopLevel(parent)) return TickModel::hasChildren(parent);
    const TreeNode::Pointer* const copy = parent.column() == 0 ? place(parent) : nullptr;
    return copy != nullptr && simpleData(**copy)->wholeFolder() != nullptr;
}

// A line that tells how the folder stands has no size and no time.
QVariant DuplicateResultModel::data(const QModelIndex& index, int role) const {
    if (index.isValid() && isEntry(index) && role == Qt::DisplayRole &&
        index.column() != NameColumn && pathInFolder(index).empty())
        return {};
    return TickModelOf::data(index, role);
}

// Of a copy the folder below which all copies of its group lie.
QString DuplicateResultModel::folderOf(const TreeNode& node) const {
    if (simpleData(node)->isGroup() || node.nodeParent() == nullptr) return {};
    const TreeNode& group = *node.nodeParent();
    const auto [found, isNew] = m_sharedFolders.try_emplace(&group);
    if (!isNew) return found->second;
    std::string_view shared = simpleData(*group.childAtIndex(0))->name();
    for (std::size_t i = 0; i < group.numberOfChildren(); ++i) {
        const std::string& path = simpleData(*group.childAtIndex(i))->name();
        shared =
            shared.substr(0, std::size_t(std::ranges::mismatch(shared, path).in1 - shared.begin()));
    }
    shared = shared.substr(0, shared.rfind('/') + 1);
    found->second = QString::fromUtf8(shared.data(), qsizetype(shared.size()));
    return found->second;
}

}  // namespace orrinvale
