// DuplicateResultModel: the result tree as a view reads it, without a copy of it.
#pragma once

#include <functional>
#include <unordered_map>

#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "ui/kit/lists/TickModel.h"

namespace orrinvale {

/// Groups on the first level, their copies on the second. An index holds numbers only, never a
/// pointer into the tree, so a view that is drawn late shows wrong rows at worst. Main thread only.
class DuplicateResultModel final : public TickModelOf<TreeNode> {
    Q_OBJECT
public:
    /// The columns from left to right.
    enum Column { Checkbox, NameColumn, AllSelectNum, FileSize, ModifyDate, ColumnCount };

    using IconSource = std::function<QIcon(const IconRequest&)>;
    using BoxClicked = std::function<void(const TreeNode::Pointer&, const QModelIndex&)>;

    /// `icons` gives the picture of a row, `boxClicked` decides what a click on a box comes to: the
    /// last clear copy of a group asks first.
    DuplicateResultModel(IconSource icons, BoxClicked boxClicked, QObject* parent = nullptr);

    /// Shows another tree, or none. Not owned; it outlives the model or is replaced before.
    void setTree(TreeNode* tree);

    /// Runs what changes the order of the tree, and keeps what a view remembers of its rows: what
    /// is open and what is selected.
    void reorder(const std::function<void()>& change);

    [[nodiscard]] TreeNode::Pointer node(const QModelIndex& index) const;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

protected:
    [[nodiscard]] TreeNode* rowAt(const QModelIndex& index) const override;
    [[nodiscard]] std::optional<TickState> stateOf(const TreeNode& node) const override;
    [[nodiscard]] QString toolTipOf(const TreeNode& node) const override;
    [[nodiscard]] QString descriptionOf(const TreeNode& node) const override;
    [[nodiscard]] QString folderOf(const TreeNode& node) const override;
    [[nodiscard]] QStringList signsOf(const TreeNode& node) const override;
    [[nodiscard]] bool isStrong(const TreeNode& node) const override;
    [[nodiscard]] bool isGrey(const TreeNode& node) const override;
    bool clickBox(const QModelIndex& index) override;

private:
    [[nodiscard]] const TreeNode::Pointer* place(const QModelIndex& index) const;

    BoxClicked m_boxClicked;
    TreeNode* m_tree = nullptr;
    // Of the groups that were drawn: a group may have a hundred thousand copies, and all of them
    // have to be asked.
    mutable std::unordered_map<const TreeNode*, QString> m_sharedFolders;
};

}  // namespace orrinvale
