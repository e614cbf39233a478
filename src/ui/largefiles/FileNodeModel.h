// FileNodeModel: the tree of a scan as a view reads it: the biggest rows of each level that is
// open. NewOutlineView.h shows it.
#pragma once

#include <QIcon>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "engine/base/IconRequest.h"
#include "engine/largefiles/FileNodeTree.h"
#include "ui/kit/lists/LevelModel.h"

namespace orrinvale {

/// The tree grows while it is shown. Main thread only.
class FileNodeModel final : public LevelModel<FileNode> {
    Q_OBJECT
public:
    /// The columns from left to right.
    enum Column { CheckBox, Name, Size, Path, OpenFinder, Pareview, ColumnCount };

    using IconSource = std::function<QIcon(const IconRequest&)>;
    using BoxClicked = std::function<void(FileNode& node)>;

    /// `icons` gives the picture of a file, `boxClicked` decides what a click on a box comes to:
    /// nothing is ticked while the tree still grows.
    FileNodeModel(IconSource icons, BoxClicked boxClicked, QObject* parent = nullptr);

    /// Shows another tree, or none.
    void setTree(std::shared_ptr<FileNodeTree> tree);

    /// A folder with something in it, unless it is a bundle, which stands for itself.
    [[nodiscard]] static bool isItemExpandable(const FileNode& node);

protected:
    [[nodiscard]] std::vector<FileNode*> rowsBelow(FileNode* above,
                                                   std::size_t wanted) const override;
    [[nodiscard]] std::size_t countBelow(FileNode* above) const override;
    [[nodiscard]] std::uint64_t revision() const override { return m_tree->revision(); }
    [[nodiscard]] bool isOpenable(const FileNode& node) const override;
    [[nodiscard]] bool isOpen(const FileNode& node) const override { return node.isExpand(); }
    void close(FileNode& node) override { node.setIsExpand(false); }

    [[nodiscard]] std::optional<TickState> stateOf(const FileNode& node) const override;
    [[nodiscard]] QString toolTipOf(const FileNode& node) const override;
    [[nodiscard]] QString folderOf(const FileNode& node) const override;
    bool clickBox(const QModelIndex& index) override;

private:
    [[nodiscard]] FileNode* folder(FileNode* above) const;

    BoxClicked m_boxClicked;
    std::shared_ptr<FileNodeTree> m_tree;
};

/// That removing this name alone frees nothing, of a file that has others; empty of all else.
[[nodiscard]] QString otherNamesText(const FileNode& node);
/// What the size alone would leave a person wondering about.
[[nodiscard]] QString sizeToolTip(const FileNode& node);

}  // namespace orrinvale
