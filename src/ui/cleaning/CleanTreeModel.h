// CleanTreeModel: the result tree of the cleaning page as its outline reads it.
#pragma once

#include <QIcon>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine/cleaning/CleanTree.h"
#include "ui/kit/lists/LevelModel.h"

namespace orrinvale {

/// Groups, and the leaves of each that the filter shows. Main thread only.
class CleanTreeModel final : public LevelModel<TreeNode> {
    Q_OBJECT
public:
    enum Column { Checkbox, NameColumn, AllSelectNum, FileSize, ModifyDate, ColumnCount };

    using IconSource = std::function<QIcon(const IconRequest&)>;
    using BoxClicked = std::function<void(TreeNode& node, const QModelIndex& index)>;

    /// `cleaned` has the paths that were cleaned before, and outlives the model.
    CleanTreeModel(IconSource icons, BoxClicked boxClicked,
                   const std::unordered_set<std::string>& cleaned, QObject* parent = nullptr);

    /// Shows this tree, or none; it outlives the model or is replaced before.
    void setTree(TreeNode* root);
    void setFilter(const QString& words);
    [[nodiscard]] bool isFiltered() const { return !m_filter.isEmpty(); }
    /// Of every group by this key.
    void sort(SortKey key, bool isDescending);
    /// All leaves of the group that the filter shows.
    [[nodiscard]] std::vector<TreeNode*> shownLeaves(const TreeNode& group) const;
    /// What is ticked of all leaves that the filter shows: 0 nothing, 1 all, 2 some.
    [[nodiscard]] std::int32_t shownState() const;
    /// Rows have left the tree; those that went are still there for the moment.
    void rowsWent();

protected:
    [[nodiscard]] std::vector<TreeNode*> rowsBelow(TreeNode* above,
                                                   std::size_t wanted) const override;
    [[nodiscard]] std::size_t countBelow(TreeNode* above) const override;
    [[nodiscard]] std::uint64_t revision() const override { return m_revision; }
    [[nodiscard]] bool isOpenable(const TreeNode& node) const override;

    [[nodiscard]] std::optional<TickState> stateOf(const TreeNode& node) const override;
    [[nodiscard]] QString toolTipOf(const TreeNode& node) const override;
    [[nodiscard]] QString descriptionOf(const TreeNode& node) const override;
    [[nodiscard]] QString folderOf(const TreeNode& node) const override;
    [[nodiscard]] QStringList signsOf(const TreeNode& node) const override;
    [[nodiscard]] bool isStrong(const TreeNode& node) const override;
    bool clickBox(const QModelIndex& index) override;

private:
    [[nodiscard]] bool isShown(const TreeNode& node) const;
    [[nodiscard]] bool isBack(const TreeNode& node) const;

    BoxClicked m_boxClicked;
    const std::unordered_set<std::string>& m_cleaned;
    TreeNode* m_root = nullptr;
    QString m_filter;
    std::uint64_t m_revision = 0;
};

}  // namespace orrinvale
