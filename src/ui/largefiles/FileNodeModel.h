// FileNodeModel: the tree of a scan as a view reads it: the biggest rows of each level that is
// open. NewOutlineView.h shows it.
#pragma once

#include <QAbstractItemModel>
#include <QIcon>
#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "engine/base/IconRequest.h"
#include "engine/largefiles/FileNodeTree.h"

namespace orrinvale {

/// The tree grows while it is shown. What a view sees of it changes only with refresh(): for each
/// level that is open the model keeps a list of pointers to the rows shown, and everything else it
/// reads from the nodes. Main thread only.
class FileNodeModel final : public QAbstractItemModel {
    Q_OBJECT
public:
    /// The columns from left to right.
    enum Column { CheckBox, Name, Size, Path, OpenFinder, Pareview, ColumnCount };

    enum Role {
        StateRole = Qt::UserRole,  ///< FileNode::State; none where nobody should select
        IconRole,                  ///< a QIcon, made when it is drawn
        ScannedFolderRole          ///< the folder that everything lies in
    };

    /// How many rows of a level are shown at first, and come with each showMore().
    static constexpr std::size_t rowsAtOnce = 5000;

    using IconSource = std::function<QIcon(const IconRequest&)>;
    using BoxClicked = std::function<void(FileNode& node)>;

    /// `icons` gives the picture of a file, `boxClicked` decides what a click on a box comes to.
    FileNodeModel(IconSource icons, BoxClicked boxClicked, QObject* parent = nullptr);
    ~FileNodeModel() override;

    /// Shows another tree, or none.
    void setTree(std::shared_ptr<FileNodeTree> tree);

    /// Brings the rows of the open levels into the order of this moment, and what a view remembers
    /// of them with it. A folder that is no longer among the rows shown is closed.
    void refresh();

    /// Whether a level holds more rows than are shown, and showing the next ones.
    [[nodiscard]] bool hasMore(const QModelIndex& parent) const;
    void showMore(const QModelIndex& parent);

    /// Null for an index of no row.
    [[nodiscard]] FileNode* node(const QModelIndex& index) const;

    /// A folder with something in it, unless it is a bundle, which stands for itself.
    [[nodiscard]] static bool isItemExpandable(const FileNode& node);

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
    struct Level;
    struct Remembered;

    [[nodiscard]] Level* levelBelow(const QModelIndex& parent) const;
    void fill(Level& level) const;
    [[nodiscard]] bool isStale(const Level& level) const;
    void refreshStale(Level& level);
    void close(std::unique_ptr<Level> level);
    [[nodiscard]] std::vector<Remembered> rememberedRows() const;
    void placeRemembered(const std::vector<Remembered>& remembered);
    [[nodiscard]] QVariant text(const FileNode& node, int column) const;
    [[nodiscard]] QIcon icon(const FileNode& node) const;

    IconSource m_icons;
    BoxClicked m_boxClicked;
    std::shared_ptr<FileNodeTree> m_tree;
    std::unique_ptr<Level> m_top;
    // A view may hold indexes of a level until it lays its rows out anew, so a level outlives its
    // closing.
    std::vector<std::unique_ptr<Level>> m_closed;
};

}  // namespace orrinvale
