// NodeRemoval: the removal of what was ticked in the large file page, on a thread of its own. Controller takes its news and changes
// the tree.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "engine/files/EntryIdentity.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/SafeRemoval.h"
#include "engine/largefiles/Controller.h"
#include "engine/largefiles/FileNodeTree.h"

namespace orrinvale {

/// What may not go of the machine, and what the list of system files names, together with every folder above one of these.
[[nodiscard]] ProtectedPlaces protectedFromLargeFiles(const FileSystem& files,
                                                      const std::vector<std::string>& ownFiles);

/// Made, used and destroyed on the main thread. What is to go is fixed when it is made. One thread removes; a second one calls for
/// the main thread while there are news, 50 ms apart, so that they arrive also while one large folder takes its time.
class NodeRemoval final {
public:
    /// Percent of the nodes, and the path of the one that it is at.
    struct Notice {
        std::int32_t percent = 0;
        std::string path;
    };
    struct News {
        std::vector<FileNode*> leaving;          ///< in the order of the tree; none of them twice
        std::vector<Notice> notices;             ///< in order
        std::optional<LargeFileRemoval> ending;  ///< the last of all news has it
        std::string lastPath;                    ///< what it was at when it ended
        bool isMore = false;                     ///< call again, in another turn
    };

    /// `nodes` is not empty. `onNews` is called on the main thread, never once this object is gone. The tree is held; the rest outlives it.
    NodeRemoval(const ControllerParts& parts, std::shared_ptr<FileNodeTree> tree, const std::vector<FileNode*>& nodes,
                std::function<void()> onNews);
    ~NodeRemoval();
    NodeRemoval(const NodeRemoval&) = delete;
    NodeRemoval& operator=(const NodeRemoval&) = delete;

    /// Ends it before the next entry.
    void stop() { m_stop = true; }
    /// Ends it, and waits for the entry in hand: no more calls, and the parts are used no more.
    void abandon();
    [[nodiscard]] FileNodeTree& tree() const { return *m_tree; }

    /// What has happened since the last call, up to this many nodes that leave.
    [[nodiscard]] News takeNews(std::size_t mostNodes);
    /// Has onNews called in a later turn of the main thread.
    void callAgain();

private:
    struct Entry {
        FileNode* node;
        EntryIdentity identity;
        bool isFolder;
    };

    void removeAll();
    [[nodiscard]] RemovalResult removeOne(const SafeRemoval& removal, const Entry& entry, const std::string& path);
    [[nodiscard]] bool settle(const Entry& entry, const std::string& path, RemovalResult removal);
    void notice(std::size_t index, const std::string& path);
    void end(std::string path);
    void wakeCaller();
    void callForNews();
    void call();
    [[nodiscard]] bool hasNews() const { return !m_leaving.empty() || !m_notices.empty() || m_isEnded; }

    const FileSystem& m_files;
    MainQueue& m_mainQueue;
    const std::vector<std::string> m_ownFiles;
    const std::shared_ptr<FileNodeTree> m_tree;
    const std::shared_ptr<const std::function<void()>> m_onNews;  // calls on their way hold it weakly
    std::vector<Entry> m_plan;
    std::atomic<bool> m_stop{false};
    // The removing thread's; the result is handed over at the end.
    std::vector<std::uint64_t> m_passing;  // devices whose inode numbers need not last
    LargeFileRemoval m_result;
    std::int32_t m_percent = -1;
    std::chrono::steady_clock::time_point m_noticed;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<FileNode*> m_leaving;  // these are guarded by m_mutex
    std::vector<Notice> m_notices;
    std::string m_lastPath;
    bool m_isEnded = false;
    bool m_isCalled = false;   // the main thread knows that there are news
    bool m_isResting = false;  // the calling thread waits for news
    bool m_isAbandoned = false;

    std::thread m_remover;
    std::thread m_caller;
};

}  // namespace orrinvale
