// DuplicateResultModel: see DuplicateResultModel.h. groupId() and copyId() say what an index holds.
#include "ui/duplicates/DuplicateResultModel.h"

#include <fmt/format.h>

#include <QDateTime>
#include <QIcon>
#include <QLocale>
#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/paintTickBox.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {
namespace {

// Qt keeps what is open in tables by index, and asks them once for each row that it lays out. It
// files an index under 16 times its row plus its column plus its identifier. With these identifiers
// a group comes under twice its row and a copy under an odd number, so that the groups, all of
// which may be open, share no place and a copy is known to be absent at the first look.
constexpr quintptr groupMark = quintptr{1} << (std::numeric_limits<quintptr>::digits - 1);

quintptr groupId(int row) { return (quintptr(0) - quintptr(14) * quintptr(row)) | groupMark; }
quintptr copyId(int groupRow) { return 2 * quintptr(groupRow) + 1; }

bool isTopLevel(const QModelIndex& index) { return (index.internalId() & groupMark) != 0; }
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
    if (data.isLink())
        specials.push_back(data.linkTarget().empty()
                               ? DuplicateResultModel::tr("Reached through a link")
                               : DuplicateResultModel::tr("Reached through a link; it lies at %1")
                                     .arg(QString::fromStdString(data.linkTarget())));
    if (data.hardLinks() > 1)
        specials.push_back(DuplicateResultModel::tr(
            "One file with %Ln names; its space is free when all of them are gone", nullptr,
            static_cast<int>(data.hardLinks())));
    return specials;
}

QString toolTipOf(const SimpleNodeData& data) {
    return (QStringList(QString::fromStdString(data.name())) + specialsOf(data))
        .join(QLatin1Char('\n'));
}

}  // namespace

DuplicateResultModel::DuplicateResultModel(IconSource icons, BoxClicked boxClicked, QObject* parent)
    : QAbstractItemModel(parent), m_icons(std::move(icons)), m_boxClicked(std::move(boxClicked)) {}

void DuplicateResultModel::setTree(TreeNode* tree) {
    beginResetModel();
    m_sharedFolders.clear();
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
        const int groupRow = isTopLevel(index) ? index.row() : groupRowOf(index);
        nodes.emplace_back(m_tree->childAtIndex(std::size_t(groupRow)).get(),
                           isTopLevel(index) ? nullptr : node(index).get());
    }
    change();

    // Sorted by address: cheaper to make than a table that asks for memory at each group.
    std::vector<std::pair<const TreeNode*, int>> groupRows;
    if (!before.empty()) groupRows.reserve(m_tree->numberOfChildren());
    for (int row = 0; row < rowCount() && !before.empty(); ++row)
        groupRows.emplace_back(m_tree->childAtIndex(std::size_t(row)).get(), row);
    std::sort(groupRows.begin(), groupRows.end());
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        const auto [group, copy] = nodes[static_cast<std::size_t>(i)];
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

void DuplicateResultModel::refresh() {
    if (rowCount() > 0) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

TreeNode::Pointer DuplicateResultModel::node(const QModelIndex& index) const {
    if (!index.isValid() || m_tree == nullptr) return nullptr;
    const auto row = static_cast<std::size_t>(index.row());
    const auto groupRow = isTopLevel(index) ? row : static_cast<std::size_t>(groupRowOf(index));
    if (groupRow >= m_tree->numberOfChildren()) return nullptr;
    const TreeNode::Pointer& group = m_tree->childAtIndex(groupRow);
    if (isTopLevel(index)) return group;
    return row < group->numberOfChildren() ? group->childAtIndex(row) : nullptr;
}

QModelIndex DuplicateResultModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column < 0 || column >= ColumnCount || row >= rowCount(parent)) return {};
    return createIndex(row, column, parent.isValid() ? copyId(parent.row()) : groupId(row));
}

QModelIndex DuplicateResultModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || isTopLevel(child)) return {};
    return createIndex(groupRowOf(child), 0, groupId(groupRowOf(child)));
}

int DuplicateResultModel::rowCount(const QModelIndex& parent) const {
    if (m_tree == nullptr) return 0;
    if (!parent.isValid()) return static_cast<int>(m_tree->numberOfChildren());
    if (!isTopLevel(parent) || parent.column() != 0) return 0;
    const auto row = static_cast<std::size_t>(parent.row());
    return row < m_tree->numberOfChildren()
               ? static_cast<int>(m_tree->childAtIndex(row)->numberOfChildren())
               : 0;
}

int DuplicateResultModel::columnCount(const QModelIndex& /*parent*/) const { return ColumnCount; }

bool DuplicateResultModel::hasChildren(const QModelIndex& parent) const {
    return rowCount(parent) > 0;
}

Qt::ItemFlags DuplicateResultModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!isTopLevel(index)) flags |= Qt::ItemNeverHasChildren;
    if (index.column() == Checkbox) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QString DuplicateResultModel::text(const TreeNode& node, int column) const {
    const SimpleNodeData& data = *simpleData(node);
    switch (column) {
        case NameColumn: return QString::fromStdString(data.name());
        case AllSelectNum:
            return data.isGroup() ? QString::fromStdString(data.showSelectNumStr()) : QString();
        case FileSize: return shownSize(UtilityFunction::convertVolSpace(data.fileSize()));
        case ModifyDate: return shortDate(data.ModificationDate());
        default: return {};
    }
}

QString DuplicateResultModel::sharedFolder(const TreeNode& group) const {
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

QVariant DuplicateResultModel::data(const QModelIndex& index, int role) const {
    const TreeNode::Pointer shown = node(index);
    SimpleNodeData* const data = shown ? simpleData(*shown) : nullptr;
    if (data == nullptr) return {};
    switch (role) {
        case Qt::DisplayRole:
            // The count of a group without some of its copies ticked is known by heart; drawing it
            // puts it right.
            if (data->isGroup() && index.column() == AllSelectNum && data->selectNum() != 2)
                data->setShowSelectNumStr(
                    fmt::format("{}/{}", data->selectNum() == 1 ? shown->numberOfChildren() : 0,
                                shown->numberOfChildren()));
            return text(*shown, index.column());
        case Qt::ToolTipRole: return asToolTip(toolTipOf(*data));
        case Qt::AccessibleDescriptionRole:
            return index.column() == NameColumn ? specialsOf(*data).join(QLatin1Char('\n'))
                                                : QString();
        case Qt::AccessibleTextRole:
            return index.column() == Checkbox ? QString::fromStdString(data->name())
                                              : text(*shown, index.column());
        case Qt::TextAlignmentRole:
            return index.column() == FileSize ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                              : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        case StateRole:
            return index.column() == Checkbox ? QVariant(data->selectNum()) : QVariant();
        case Qt::CheckStateRole:
            return index.column() == Checkbox
                       ? QVariant(
                             static_cast<int>(checkState(tickState(QVariant(data->selectNum())))))
                       : QVariant();
        case IsGroupRole: return data->isGroup();
        case SharedFolderRole:
            return data->isGroup() ? QString() : sharedFolder(*shown->nodeParent());
        case LinkRole: return data->isLink();
        case HardLinksRole: return data->hardLinks();
        case IconRole:
            return data->iconRep() && m_icons ? QVariant(m_icons(*data->iconRep())) : QVariant();
        default: return {};
    }
}

bool DuplicateResultModel::setData(const QModelIndex& index, const QVariant& /*value*/, int role) {
    if (index.column() != Checkbox || (role != StateRole && role != Qt::CheckStateRole))
        return false;
    const TreeNode::Pointer clicked = node(index);
    if (!clicked || !m_boxClicked) return false;
    // What the state becomes is not the box's to say: the last clear copy of a group asks first.
    m_boxClicked(clicked, index);
    return true;
}

QVariant DuplicateResultModel::headerData(int section, Qt::Orientation orientation,
                                          int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole && section == FileSize)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    // Columns of boxes and pictures have no words over them, but a name for those who do not see
    // them.
    const bool isNamed = role == Qt::AccessibleTextRole;
    if (role != Qt::DisplayRole && !isNamed) return {};
    switch (section) {
        case Checkbox: return isNamed ? QVariant(tr("Ticked")) : QVariant();
        case NameColumn: return tr("Name");
        case AllSelectNum: return tr("Selected");
        case FileSize: return tr("Size");
        case ModifyDate: return tr("Modified");
        default: return {};
    }
}

}  // namespace orrinvale
