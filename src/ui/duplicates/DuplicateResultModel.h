// DuplicateResultModel: the result tree as a view reads it, without a copy of it.
#pragma once

#include <functional>
#include <unordered_map>

#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "ui/duplicates/OpenedFolders.h"
#include "ui/kit/lists/TickModel.h"

namespace orrinvale {

/// Groups on the first level, their copies on the second, and on the third what lies in a copy that
/// is a folder and was opened: these rows have no boxes, since a folder goes as one. An index holds
/// numbers only, never a pointer into the tree, so a view that is drawn late shows wrong rows at
/// worst. Main thread only.
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

    /// Null for what lies in a folder.
    [[nodiscard]] TreeNode::Pointer node(const QModelIndex& index) const;

    /// Whether the row is one of those in a folder, whose row is the one above it.
    [[nodiscard]] static bool isInFolder(const QModelIndex& index);
    /// Of such a row the path below the folder; empty for one that tells how the folder stands.
    [[nodiscard]] std::string pathInFolder(const QModelIndex& index) const;

    /// A folder is open from here on, and waits for showContents(). What stands for the opening;
    /// null where the row is none, or is open.
    [[nodiscard]] OpenedFolders::Stop openFolder(const QModelIndex& row);
    void closeFolder(const QModelIndex& row);
    /// None of these does anything once the folder has been closed.
    [[nodiscard]] std::string pathOfOpening(const OpenedFolders::Stop& opening) const;
    void showBeingRead(const OpenedFolders::Stop& opening);
    void showContents(const OpenedFolders::Stop& opening, FolderContents contents);
    /// The groups of the folders that are open: the view remembers these by their places.
    [[nodiscard]] std::vector<TreeNode*> openedGroups() const;
    [[nodiscard]] bool hasMore(const QModelIndex& parent) const override;
    void showMore(const QModelIndex& parent) override;

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

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
    [[nodiscard]] OpenedFolders::Folder* folderBelow(const QModelIndex& parent) const;
    [[nodiscard]] OpenedFolders::Folder* folderOfEntry(const QModelIndex& entry) const;
    [[nodiscard]] QModelIndex indexOf(const OpenedFolders::Folder& folder) const;
    void showRows(OpenedFolders::Folder& folder, std::size_t count);
    void placeOpened(const std::vector<std::pair<const TreeNode*, int>>& groupRows);
    [[nodiscard]] TreeNode* entryRow(const QModelIndex& index) const;
    [[nodiscard]] QString entryTip(const TreeNode& entry) const;

    BoxClicked m_boxClicked;
    TreeNode* m_tree = nullptr;
    // Of the groups that were drawn: a group may have a hundred thousand copies, and all of them
    // have to be asked.
    mutable std::unordered_map<const TreeNode*, QString> m_sharedFolders;
    OpenedFolders m_opened;
    // The row in a folder that was asked for last, and the folder: one at a time is made.
    mutable TreeNode::Pointer m_entry;
    mutable const OpenedFolders::Folder* m_entryFolder = nullptr;
};

}  // namespace orrinvale
