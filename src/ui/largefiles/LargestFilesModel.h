// LargestFilesModel: the files of a scanned tree in one list, as a view reads it.
// LargestFilesView.h shows it, LargestFilesDesk.h fills it.
#pragma once

#include <QIcon>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "engine/base/IconRequest.h"
#include "engine/largefiles/LargestFiles.h"
#include "ui/kit/lists/LevelModel.h"

namespace orrinvale {

/// Rows are those of the list that it was given last, the first thousands and more as they are
/// scrolled to. Main thread only.
class LargestFilesModel final : public LevelModel<FileNode> {
    Q_OBJECT
public:
    /// The columns from left to right.
    enum Column {
        CheckBox,
        Name,
        Size,
        Changed,
        Opened,
        Kind,
        Folder,
        OpenFinder,
        Pareview,
        ColumnCount
    };

    using IconSource = std::function<QIcon(const IconRequest&)>;
    using BoxClicked = std::function<void(FileNode& node)>;

    LargestFilesModel(IconSource icons, BoxClicked boxClicked, QObject* parent = nullptr);

    /// Shows another list of the tree, which the list belongs to, or none. With `isAnew` from its
    /// top; else whoever looks at a row keeps it.
    void setList(std::shared_ptr<FileNodeTree> tree, std::shared_ptr<LargestFiles> list,
                 bool isAnew);

protected:
    [[nodiscard]] std::vector<FileNode*> rowsBelow(FileNode* above,
                                                   std::size_t wanted) const override;
    [[nodiscard]] std::size_t countBelow(FileNode* above) const override;
    [[nodiscard]] std::uint64_t revision() const override { return m_revision; }

    [[nodiscard]] std::optional<TickState> stateOf(const FileNode& node) const override;
    [[nodiscard]] QString toolTipOf(const FileNode& node) const override;
    [[nodiscard]] QString descriptionOf(const FileNode& node) const override;
    [[nodiscard]] QString folderOf(const FileNode& node) const override;
    bool clickBox(const QModelIndex& index) override;

private:
    static std::vector<TickColumn<FileNode>> columns(const LargestFilesModel* model,
                                                     IconSource icons);
    [[nodiscard]] double shareOf(const FileNode& node) const;
    [[nodiscard]] const FileWish& wish() const { return m_list->wish(); }

    BoxClicked m_boxClicked;
    std::shared_ptr<FileNodeTree> m_tree;
    std::shared_ptr<LargestFiles> m_list;
    std::uint64_t m_revision = 0;
};

/// "Videos", as the views of a duplicate search are called.
[[nodiscard]] QString fileKindTitle(FileKind kind);

}  // namespace orrinvale
