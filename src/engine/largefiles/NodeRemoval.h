// NodeRemoval: the removal of what was ticked in the large file page. RemovalJob removes; here its
// news become the page's. Controller takes them and changes the tree.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/largefiles/FileNodeTree.h"
#include "engine/largefiles/LargeFileRemoval.h"
#include "engine/removal/RemovalJob.h"

namespace orrinvale {

/// Made, used and destroyed on the main thread. What is to go is fixed when it is made.
class NodeRemoval final {
public:
    /// Percent of the nodes, and the path of the one that it is at.
    struct Notice {
        std::int32_t percent = 0;
        std::string path;
    };
    struct News {
        std::vector<FileNode*> leaving;  ///< in the order of the tree; none of them twice
        std::vector<Notice>
            notices;  ///< in order; of nodes that share a percentage not each has one
        std::optional<LargeFileRemoval> ending;  ///< the last of all news has it
        std::string lastPath;                    ///< what it was at when it ended
        FileNode* cut = nullptr;  ///< with the ending: a folder that the stop left a part of
        bool isMore = false;      ///< call again, in another turn
    };

    /// `nodes` is not empty. `onNews` is called on the main thread, never once this object is gone.
    /// The tree is held; file system and queue outlive it. `ownFiles` are the program's, which
    /// stay.
    NodeRemoval(const FileSystem& files, MainQueue& queue, const std::vector<std::string>& ownFiles,
                std::shared_ptr<FileNodeTree> tree, const std::vector<FileNode*>& nodes,
                std::function<void()> onNews);
    ~NodeRemoval();
    NodeRemoval(const NodeRemoval&) = delete;
    NodeRemoval& operator=(const NodeRemoval&) = delete;

    /// Ends it before the next entry.
    void stop() { m_job.stop(); }
    /// Ends it, and waits for the entry in hand: no more calls, and the parts are used no more.
    void abandon() { m_job.abandon(); }
    [[nodiscard]] FileNodeTree& tree() const { return *m_tree; }

    /// What has happened since the last call, up to this many nodes that leave.
    [[nodiscard]] News takeNews(std::size_t mostNodes);
    /// Has onNews called in a later turn of the main thread.
    void callAgain() { m_job.callAgain(); }

private:
    class List;
    void notice(News& news, std::size_t index, bool isInHand);
    void end(News& news, const RemovalOutcome& outcome) const;

    const std::shared_ptr<FileNodeTree> m_tree;
    const std::shared_ptr<List> m_list;
    RemovalJob m_job;
    std::size_t m_taken = 0;  // entries whose news were taken
    Notice m_last{.percent = -1, .path = {}};
};

}  // namespace orrinvale
