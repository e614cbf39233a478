// NodeSelection: the rules of the ticks in the tree of the large file page, down and up. Controller
// tells the page about them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/largefiles/FileNode.h"

namespace orrinvale {

/// Gives a state to what stands below folders: to the children in any case, further down through
/// what is open in the list. What is below a closed folder keeps its states until it is opened. On
/// the thread that owns the tree, like all that is here.
class TickSpread final {
public:
    /// 0 clears. Any other state ticks what spreads it further, and is given to the rest as it
    /// stands.
    explicit TickSpread(std::uint8_t state) : m_state(static_cast<FileNode::State>(state)) {}

    /// The node's own state, and when it is a folder, those below it with the next steps.
    void tick(FileNode& node);

    /// Visits up to about that many nodes. True when nothing is left.
    bool step(std::size_t nodes);
    void finish() { static_cast<void>(step(~std::size_t{0})); }

    /// Whether it went further than the children of a node that was handed over.
    [[nodiscard]] bool wentFurther() const { return m_wentFurther; }

private:
    const FileNode::State m_state;
    std::vector<FileNode*> m_folders;  // whose children come next, the last first
    std::size_t m_next = 0;            // of the last folder's children
    bool m_wentFurther = false;
};

/// A node's state has changed: those of the folders above follow. A folder that holds folders is at
/// most mixed.
void followUpwards(FileNode& node);

/// What a removal would make of the node at this moment: of the folders above it the topmost that
/// is not mixed decides, whatever the node's own state, which may be of another time.
[[nodiscard]] FileNode::State standingState(const FileNode& node);

/// One node gets a state by itself, wherever it lies. Those beside its way keep what stood for
/// them. No folder above comes to be ticked as a whole, since nobody meant the folder.
void tickOne(FileNode& node, FileNode::State state);
/// The same for many nodes below a root, in a few passes over the whole tree.
void tickMany(FileNode& root, std::span<FileNode* const> nodes, FileNode::State state);

struct TickedTotals {
    std::uint64_t nodes = 0;
    std::uint64_t bytes = 0;
    std::uint64_t folders = 0;  ///< of the nodes; a bundle is none
    std::uint64_t linked = 0;   ///< of the nodes the files that have other names too
    friend bool operator==(const TickedTotals&, const TickedTotals&) = default;
};

/// Of tickedOf() the count and the sizes.
[[nodiscard]] TickedTotals totalsOf(std::span<FileNode* const> nodes);

/// Whether a file that has other names too lies below ticked folders of these, as far as so many
/// looks tell: true where they do not come to an end.
[[nodiscard]] bool mayHoldLinked(std::span<FileNode* const> nodes, std::size_t looks);

/// 0 nothing of these is ticked, 1 all of it, 2 something.
[[nodiscard]] std::int32_t summaryOf(std::span<FileNode* const> nodes);

/// What would go of these siblings, in the order of the tree: a ticked node as a whole, of a mixed
/// one what is ticked below it.
[[nodiscard]] std::vector<FileNode*> tickedOf(std::span<FileNode* const> nodes);

}  // namespace orrinvale
