// DuplicateResultModel: the result tree as a view reads it, without a copy of it.
// ResultRowDelegate.h draws the rows.
#pragma once

#include <QAbstractItemModel>
#include <functional>
#include <unordered_map>

#include "engine/duplicates/tree/SimpleTreeNode.h"

namespace orrinvale {

/// Groups on the first level, their copies on the second. An index holds numbers only, never a
/// pointer into the tree, so a view that is drawn late shows wrong rows at worst. Main thread only.
class DuplicateResultModel final : public QAbstractItemModel {
    Q_OBJECT
public:
    /// The columns from left to right.
    enum Column { Checkbox, NameColumn, AllSelectNum, FileSize, ModifyDate, ColumnCount };

    enum Role {
        StateRole = Qt::UserRole,  ///< selectNum: 0 nothing, 1 all, 2 some
        IsGroupRole,
        IconRole,          ///< a QIcon, made when it is drawn
        SharedFolderRole,  ///< of a copy: the folder below which all copies of its group lie, with
                           ///< a slash at its end
        LinkRole,          ///< the row is a link, or stands behind one
        HardLinksRole      ///< how many names its file has
    };

    using IconSource = std::function<QIcon(const IconRequest&)>;
    using BoxClicked = std::function<void(const TreeNode::Pointer&, const QModelIndex&)>;

    /// `icons` gives the picture of a row, `boxClicked` decides what a click on a box comes to.
    DuplicateResultModel(IconSource icons, BoxClicked boxClicked, QObject* parent = nullptr);

    /// Shows another tree, or none. Not owned; it outlives the model or is replaced before.
    void setTree(TreeNode* tree);

    /// Runs what changes the order of the tree, and keeps what a view remembers of its rows: what
    /// is open and what is selected.
    void reorder(const std::function<void()>& change);

    /// States and texts of every row may have changed.
    void refresh();

    [[nodiscard]] TreeNode::Pointer node(const QModelIndex& index) const;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    [[nodiscard]] QString text(const TreeNode& node, int column) const;
    [[nodiscard]] QString sharedFolder(const TreeNode& group) const;

    IconSource m_icons;
    BoxClicked m_boxClicked;
    TreeNode* m_tree = nullptr;
    // Of the groups that were drawn: a group may have a hundred thousand copies, and all of them
    // have to be asked.
    mutable std::unordered_map<const TreeNode*, QString> m_sharedFolders;
};

}  // namespace orrinvale
