// OpenedFolders: the copies of folder groups that a person has opened in the list, and what lies in
// them. DuplicateResultModel shows it, FolderOpening has it listed.
#pragma once

#include <QString>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "engine/duplicates/folders/FolderContents.h"
#include "engine/duplicates/tree/TreeNode.h"

namespace orrinvale {

/// A place for each, whose number is the same as long as the folder is open. Main thread only.
class OpenedFolders final {
public:
    /// How many rows are shown at first, and come with each showing of more.
    static constexpr std::size_t rowsAtOnce = 5000;
    /// True once nobody wants the answer any more. It stands for the opening that it is of.
    using Stop = std::shared_ptr<std::atomic<bool>>;

    struct Folder {
        TreeNode::Pointer leaf;
        int group = 0;  ///< where it stands: the row of its group, and its own in that
        int row = 0;
        Stop stop;
        std::optional<FolderContents> contents;  ///< once it is listed
        QString notice;                          ///< in the place of rows
        std::size_t shown = 0;                   ///< how many rows there are
    };

    ~OpenedFolders() { clear(); }

    /// The number of its place; nothing for one that is closed.
    [[nodiscard]] std::optional<std::size_t> find(const TreeNode* leaf) const;
    [[nodiscard]] std::optional<std::size_t> find(const Stop& opening) const;
    /// Null for a place that is free.
    [[nodiscard]] Folder* at(std::size_t place) const;

    /// Not one that is open.
    Folder& open(TreeNode::Pointer leaf, int group, int row);
    /// What is in it ends aside.
    void close(std::size_t place);
    void clear();

    void visit(const std::function<void(Folder&)>& each) const;
    [[nodiscard]] bool empty() const { return m_places.empty(); }

private:
    std::vector<std::unique_ptr<Folder>> m_folders;  // by place
    std::unordered_map<const TreeNode*, std::size_t> m_places;
};

}  // namespace orrinvale
