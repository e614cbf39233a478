// DuplicateResultModel: see DuplicateResultModel.h. The identifier of an index is 0 for a group, and for a copy the row of its group
// plus one.
#include "ui/duplicates/DuplicateResultModel.h"

#include <fmt/format.h>

#include <QDateTime>
#include <QIcon>
#include <QLocale>
#include <unordered_map>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/paintTickBox.h"

namespace orrinvale {
namespace {

bool isTopLevel(const QModelIndex& index) { return index.internalId() == 0; }

QString shortDate(const std::optional<Date>& date) {
    if (!date) return {};
    constexpr std::int64_t perMillisecond = 1'000'000;
    const QDateTime moment = QDateTime::fromMSecsSinceEpoch(date->nanoseconds / perMillisecond);
    return QLocale().toString(moment, QLocale::ShortFormat);
}

}  // namespace

DuplicateResultModel::DuplicateResultModel(IconSource icons, BoxClicked boxClicked, QObject* parent)
    : QAbstractItemModel(parent), m_icons(std::move(icons)), m_boxClicked(std::move(boxClicked)) {}

void DuplicateResultModel::setTree(TreeNode* tree) {
    beginResetModel();
    m_tree = tree;
    endResetModel();
}

void DuplicateResultModel::reorder(const std::function<void()>& change) {
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    std::vector<const TreeNode*> nodes;
    nodes.reserve(static_cast<std::size_t>(before.size()));
    for (const QModelIndex& index : before) nodes.push_back(node(index).get());
    change();

    std::unordered_map<const TreeNode*, int> groupRows;
    for (int row = 0; row < rowCount(); ++row) groupRows.emplace(m_tree->childAtIndex(std::size_t(row)).get(), row);
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        const TreeNode* const node = nodes[static_cast<std::size_t>(i)];
        const int column = before[i].column();
        if (isTopLevel(before[i])) {
            after.push_back(createIndex(groupRows.at(node), column, quintptr{0}));
            continue;
        }
        // A group found by its node: the parent that a copy knows may be shown in another tree at another row.
        const TreeNode* const group = node->nodeParent();
        const auto row = group->indexOfChild(node).value_or(0);
        after.push_back(createIndex(static_cast<int>(row), column, quintptr(groupRows.at(group)) + 1));
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
    const auto groupRow = isTopLevel(index) ? row : static_cast<std::size_t>(index.internalId() - 1);
    if (groupRow >= m_tree->numberOfChildren()) return nullptr;
    const TreeNode::Pointer& group = m_tree->childAtIndex(groupRow);
    if (isTopLevel(index)) return group;
    return row < group->numberOfChildren() ? group->childAtIndex(row) : nullptr;
}

QModelIndex DuplicateResultModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column < 0 || column >= ColumnCount || row >= rowCount(parent)) return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : quintptr{0});
}

QModelIndex DuplicateResultModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || isTopLevel(child)) return {};
    return createIndex(static_cast<int>(child.internalId() - 1), 0, quintptr{0});
}

int DuplicateResultModel::rowCount(const QModelIndex& parent) const {
    if (m_tree == nullptr) return 0;
    if (!parent.isValid()) return static_cast<int>(m_tree->numberOfChildren());
    if (!isTopLevel(parent) || parent.column() != 0) return 0;
    const auto row = static_cast<std::size_t>(parent.row());
    return row < m_tree->numberOfChildren() ? static_cast<int>(m_tree->childAtIndex(row)->numberOfChildren()) : 0;
}

int DuplicateResultModel::columnCount(const QModelIndex& /*parent*/) const { return ColumnCount; }

bool DuplicateResultModel::hasChildren(const QModelIndex& parent) const { return rowCount(parent) > 0; }

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
        case AllSelectNum: return data.isGroup() ? QString::fromStdString(data.showSelectNumStr()) : QString();
        case FileSize: return QString::fromStdString(UtilityFunction::convertVolSpace(data.fileSize()));
        case ModifyDate: return shortDate(data.ModificationDate());
        default: return {};
    }
}

QVariant DuplicateResultModel::data(const QModelIndex& index, int role) const {
    const TreeNode::Pointer shown = node(index);
    SimpleNodeData* const data = shown ? simpleData(*shown) : nullptr;
    if (data == nullptr) return {};
    switch (role) {
        case Qt::DisplayRole:
            // The count of a group without some of its copies ticked is known by heart; drawing it puts it right.
            if (data->isGroup() && index.column() == AllSelectNum && data->selectNum() != 2)
                data->setShowSelectNumStr(fmt::format("{}/{}", data->selectNum() == 1 ? shown->numberOfChildren() : 0,
                                                      shown->numberOfChildren()));
            return text(*shown, index.column());
        case Qt::ToolTipRole: return QString::fromStdString(data->name());
        case Qt::AccessibleTextRole:
            return index.column() == Checkbox ? QString::fromStdString(data->name()) : text(*shown, index.column());
        case Qt::TextAlignmentRole:
            return index.column() == FileSize ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                              : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        case StateRole: return index.column() == Checkbox ? QVariant(data->selectNum()) : QVariant();
        case Qt::CheckStateRole:
            return index.column() == Checkbox
                       ? QVariant(static_cast<int>(checkState(tickState(QVariant(data->selectNum())))))
                       : QVariant();
        case IsGroupRole: return data->isGroup();
        case IconRole: return data->iconRep() && m_icons ? QVariant(m_icons(*data->iconRep())) : QVariant();
        default: return {};
    }
}

bool DuplicateResultModel::setData(const QModelIndex& index, const QVariant& /*value*/, int role) {
    if (index.column() != Checkbox || (role != StateRole && role != Qt::CheckStateRole)) return false;
    const TreeNode::Pointer clicked = node(index);
    if (!clicked || !m_boxClicked) return false;
    // What the state becomes is not the box's to say: the last clear copy of a group asks first.
    m_boxClicked(clicked, index);
    return true;
}

QVariant DuplicateResultModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole && section == FileSize) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return {};
    switch (section) {
        case NameColumn: return QStringLiteral("Name");
        case AllSelectNum: return QStringLiteral("Selected");
        case FileSize: return QStringLiteral("Size");
        case ModifyDate: return QStringLiteral("Modified");
        default: return {};
    }
}

}  // namespace orrinvale
