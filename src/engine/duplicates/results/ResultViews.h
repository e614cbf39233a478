// ResultViews: the result of a search sorted into its seven views, with their sizes, kept true
// while copies are removed. DuplicateSelection.h says what is ticked in it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/duplicates/FileKind.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"

namespace orrinvale {

/// One row of the list of types: its title and picture, and which groups it shows; all of them when
/// it has no kind.
struct ResultRow {
    std::string_view title;
    std::string_view picture;
    std::optional<FileKind> kind;
};

/// The rows from top to bottom. Their order is not that of the kinds' codes.
inline constexpr std::array<ResultRow, 7> resultRows{{
    {"All", "all", std::nullopt},
    {"Documents", "ic_doc", FileKind::Documents},
    {"Videos", "ic_video", FileKind::Videos},
    {"Music", "ic_music", FileKind::Music},
    {"Archives", "ic_archive", FileKind::Archives},
    {"Pictures", "ic_pic", FileKind::Pictures},
    {"Others", "ic_other", FileKind::Others},
}};

/// A group stands in the tree of row 0 and in the tree of exactly one type, and its size counts for
/// that type. One thread at a time: it may be made on one and handed over, and what is left of it
/// be cleared on another once nothing shows its trees.
class ResultViews final {
public:
    /// Takes the result over and puts each group that is not marked yet into the view of its type.
    void setResult(std::shared_ptr<SimpleTreeNode> all);

    /// Takes every tree apart and sets the sizes to 0.
    void clear();

    /// The tree of a row; null before a result is set.
    [[nodiscard]] SimpleTreeNode* tree(std::size_t row) const;

    /// The bytes of a row: of row 0 the sum of the others.
    [[nodiscard]] std::uint64_t size(std::size_t row) const;

    /// The same for people; "0.0KB" for none.
    [[nodiscard]] std::string sizeText(std::size_t row) const;

    /// The leaves that lie in folders that are equal as wholes, the inner ones of these too.
    [[nodiscard]] const std::vector<TreeNode::Pointer>& inFolders() const { return m_inFolders; }
    /// Whether any row stood for a whole folder when the result was set.
    [[nodiscard]] bool hasWholeFolders() const { return m_hasWholeFolders; }

    /// How many copies the groups of a tree hold.
    [[nodiscard]] static std::size_t leafCount(const TreeNode& tree);

    /// Takes copies that are gone from the disk out of their groups, and groups that are none any
    /// more out of both their trees: those without a copy left, and those partly ticked with a
    /// single copy left, which stays on the disk. With a folder goes what lies in it. One pass over
    /// the trees for the whole batch.
    void removeLeaves(std::span<const TreeNode::Pointer> leaves);

private:
    void sortIn(const TreeNode::Pointer& group);
    bool removeFromGroup(TreeNode& group, std::span<const TreeNode::Pointer> leaves);
    void findInFolders();
    void shrink(const SimpleNodeData& group, std::uint64_t bytes);

    std::shared_ptr<SimpleTreeNode> m_all;
    std::array<std::shared_ptr<SimpleTreeNode>, 7> m_types;  // by the kind's code, 1 to 6
    std::array<std::uint64_t, 7> m_sizes{};                  // likewise
    std::vector<TreeNode::Pointer> m_inFolders;
    bool m_hasWholeFolders = false;
};

}  // namespace orrinvale
